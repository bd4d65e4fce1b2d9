// The form of a rendered message, told from its first bytes.
#include "client/tnef_client.h"

namespace tnefclient {

BodyForm detectBodyForm(std::string_view head) {
    if (head.size() >= 3 && static_cast<unsigned char>(head[0]) == 0xEF &&
        static_cast<unsigned char>(head[1]) == 0xBB && static_cast<unsigned char>(head[2]) == 0xBF) {
        head.remove_prefix(3);
    }
    size_t start = head.find_first_not_of(" \t\r\n");
    if (start == std::string_view::npos) return BodyForm::kText;
    head.remove_prefix(start);
    if (head.substr(0, 5) == "{\\rtf") return BodyForm::kRtf;
    if (head.size() >= 2 && head[0] == '<') {
        char next = head[1];
        bool letter = (next >= 'a' && next <= 'z') || (next >= 'A' && next <= 'Z');
        if (letter || next == '!' || next == '?') return BodyForm::kHtml;
    }
    return BodyForm::kText;
}

const char* bodyFormName(BodyForm form) {
    switch (form) {
        case BodyForm::kHtml: return "html";
        case BodyForm::kRtf: return "rtf";
        default: return "text";
    }
}

const char* bodyFormExtension(BodyForm form) {
    switch (form) {
        case BodyForm::kHtml: return ".html";
        case BodyForm::kRtf: return ".rtf";
        default: return ".txt";
    }
}

}  // namespace tnefclient
