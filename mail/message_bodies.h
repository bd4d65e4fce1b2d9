// The readable bodies of a TNEF message, as unwrap puts them into MIME.
// This is the one place that asks the module for bodies: the text body
// (in UTF-8) and a stored HTML body, never with the summary header in front.
// An RTF-only body is kept as it is, for a reader that can show it.
#pragma once

#include <optional>
#include <string>

#include "client/tnef_client.h"

namespace tnefmail {

struct MessageBodies {
    std::optional<std::string> text;         // UTF-8
    std::optional<std::string> html;
    std::optional<std::string> htmlCharset;  // as the message's internet code page names it
    std::optional<std::string> rtf;          // only when there is neither text nor HTML
};

// False, with the reason in `problem`, when a body exists but can't be read.
bool readBodies(tnefclient::Session& session, int32_t message, MessageBodies* bodies,
                std::string* problem);

}  // namespace tnefmail
