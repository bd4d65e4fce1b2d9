// Rewrites the charset an HTML document declares, as it streams past: in a
// <meta charset=...> the value, in a <meta http-equiv=... content="...;
// charset=..."> the charset inside the content, both become utf-8. All
// other bytes pass unchanged; a <meta> tag longer than any real one passes
// unchanged too.
#pragma once

#include <string>
#include <string_view>

#include "rtf/output_sink.h"

namespace tnefrtf {

class MetaCharsetRewriter {
public:
    explicit MetaCharsetRewriter(OutputBuffer& out) : out_(out) {}

    void write(std::string_view bytes);
    // The input ends: a tag still open goes out as it is.
    void finish();

private:
    enum class State { kText, kTagName, kMeta };

    void passTag();
    void rewriteMeta();

    OutputBuffer& out_;
    State state_ = State::kText;
    std::string tag_;  // the tag read so far, from its '<'
    char quote_ = 0;   // inside an attribute value quoted with this
};

// The tag `tag` (from '<' to '>') with its declared charset made utf-8.
std::string rewriteMetaTag(std::string_view tag);

}  // namespace tnefrtf
