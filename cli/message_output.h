// The message as show and extract write it: a readable body in the form
// asked (client/readable_body.h, text from HTML through libxml2), or, with
// --raw and for --format/--body rtf, the module's own rendering.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "client/tnef_client.h"

namespace tnefcli {

struct MessageOptions {
    // kAuto, kText and kHtml: a readable body; kRtf: the module's rendering
    // with a stored body first; kNone: extract leaves the message out.
    tnefclient::BodyChoice body = tnefclient::BodyChoice::kAuto;
    bool raw = false;  // the module's rendering, `body` choosing as the module does
    bool noHeader = false;
    CharsetId charset = kCharsetNone;  // of text: readable text converted, or asked of the module

    bool readable() const { return !raw && body != tnefclient::BodyChoice::kRtf; }
};

struct MessageWritten {
    int32_t status = kTnefOk;  // the module's, or kTnefOutputUnusable
    // Of a readable body: its form and what it was made from
    // (bodySourceName); the module's rendering tells its form by its bytes.
    std::optional<tnefclient::BodyForm> form;
    std::optional<std::string> source;
    std::optional<std::string> warning;  // the RTF body is damaged: what was read is written
};

// Writes the message at `index` to `output`, which need not be open.
MessageWritten writeMessage(tnefclient::Session& session, int32_t index,
                            const MessageOptions& options, IoObject* output);

}  // namespace tnefcli
