// The readable bodies of a TNEF message, as unwrap puts them into MIME.
// This is the one place that asks for bodies: the module's text body (in
// UTF-8) and stored HTML body, never with the summary header in front, and
// where the message has only RTF, the HTML and text the RTF readers make of
// it (the HTML it encapsulates, or a conversion).
#pragma once

#include <optional>
#include <string>

#include "client/tnef_client.h"

namespace tnefmail {

struct MessageBodies {
    std::optional<std::string> text;         // UTF-8
    std::optional<std::string> html;
    std::optional<std::string> htmlCharset;  // as the message's internet code page names it
};

// False, with the reason in `problem`, when a body exists but can't be read.
bool readBodies(tnefclient::Session& session, int32_t message, MessageBodies* bodies,
                std::string* problem);

}  // namespace tnefmail
