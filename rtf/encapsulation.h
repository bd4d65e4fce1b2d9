// What an RTF body carries, by its header (the published RTF extensions for
// mail, MS-OXRTFEX): HTML (\fromhtml1) or plain text (\fromtext) that was
// put into RTF, or RTF of its own.
#pragma once

namespace tnefrtf {

enum class Encapsulation {
    kUnknown,  // the header has not been read yet
    kNone,     // native RTF
    kHtml,
    kText,
};

}  // namespace tnefrtf
