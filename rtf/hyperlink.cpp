#include "rtf/hyperlink.h"

namespace tnefrtf {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }

char asciiLower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

bool sameLetters(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (asciiLower(a[i]) != asciiLower(b[i])) return false;
    }
    return true;
}

// Reads one argument of a field instruction from `rest`: a quoted string
// (to its closing quote, or the end) or a run of non-blanks.
std::string_view nextArgument(std::string_view& rest) {
    while (!rest.empty() && isBlank(rest.front())) rest.remove_prefix(1);
    if (rest.empty()) return {};
    size_t end = 0;
    std::string_view argument;
    if (rest.front() == '"') {
        end = rest.find('"', 1);
        if (end == std::string_view::npos) end = rest.size();
        argument = rest.substr(1, end - 1);
        rest.remove_prefix(end == rest.size() ? end : end + 1);
        return argument;
    }
    while (end < rest.size() && !isBlank(rest[end])) ++end;
    argument = rest.substr(0, end);
    rest.remove_prefix(end);
    return argument;
}

}  // namespace

std::string hyperlinkTarget(std::string_view instruction) {
    std::string_view rest = instruction;
    if (!sameLetters(nextArgument(rest), "HYPERLINK")) return {};
    std::string_view address;
    std::string_view place;
    while (!rest.empty()) {
        bool quoted = false;
        for (char c : rest) {
            if (isBlank(c)) continue;
            quoted = c == '"';
            break;
        }
        std::string_view argument = nextArgument(rest);
        if (!quoted && argument.size() == 2 && argument[0] == '\\') {
            // Switches: \l, \o and \t take an argument; \m, \n, \h don't.
            char name = asciiLower(argument[1]);
            if (name == 'l') {
                place = nextArgument(rest);
            } else if (name == 'o' || name == 't') {
                nextArgument(rest);
            }
        } else if (address.empty()) {
            address = argument;
        }
    }
    std::string target(address);
    if (!place.empty()) target.append("#").append(place);
    return target;
}

bool isSafeLinkTarget(std::string_view target) {
    if (target.empty()) return false;
    for (char c : target) {
        auto byte = static_cast<unsigned char>(c);
        if (byte <= 0x20 || byte == 0x7F) return false;
    }
    size_t colon = target.find(':');
    if (colon == std::string_view::npos) return true;
    // What precedes a colon is a scheme unless a path, query or fragment
    // has begun.
    std::string_view head = target.substr(0, colon);
    if (head.find_first_of("/?#") != std::string_view::npos) return true;
    for (std::string_view scheme : {"http", "https", "ftp", "mailto", "news", "tel"}) {
        if (sameLetters(head, scheme)) return true;
    }
    return false;
}

}  // namespace tnefrtf
