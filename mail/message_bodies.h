// The readable bodies of a TNEF message, as unwrap puts them into MIME.
// This is the one place that asks for bodies, through the client's readable
// bodies and never with the summary header in front: the text (the text
// body, else text made from the HTML or RTF body) and the HTML (the stored
// HTML body, else the HTML an RTF body encapsulates or is made into).
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
