#include "mail/input_kind.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "client/tnef_client.h"

namespace tnefmail {

namespace {

// A header field's name: printable ASCII but the colon (RFC 5322 ftext).
size_t fieldNameLength(std::string_view line) {
    size_t n = 0;
    while (n < line.size() && line[n] >= '!' && line[n] <= '~' && line[n] != ':') ++n;
    return n;
}

// True when `line` can stand in a header block: a field, or (not first) the
// continuation of one.
bool isHeaderLine(std::string_view line, bool first) {
    if (!line.empty() && (line[0] == ' ' || line[0] == '\t')) return !first;
    size_t name = fieldNameLength(line);
    return name > 0 && name < line.size() && line[name] == ':';
}

// True when the head opens with header fields up to a blank line, or to
// the end of the head: a message's header block.
bool opensWithHeaders(std::string_view head) {
    bool first = true;
    while (!head.empty()) {
        size_t end = std::min(head.find('\n'), head.size());
        std::string_view line = head.substr(0, end);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        head.remove_prefix(std::min(end + 1, head.size()));
        if (line.empty()) return !first;
        if (!isHeaderLine(line, first)) return false;
        first = false;
    }
    return !first;
}

}  // namespace

const char* inputKindName(InputKind kind) {
    switch (kind) {
        case InputKind::kTnef: return "tnef";
        case InputKind::kMessage: return "message";
        case InputKind::kMbox: return "mbox";
        case InputKind::kMaildir: return "maildir";
        case InputKind::kOther: break;
    }
    return "other";
}

InputKind detectKindOfHead(std::string_view head) {
    if (tnefclient::startsWithTnefSignature(head)) return InputKind::kTnef;
    if (head.substr(0, 5) == "From ") return InputKind::kMbox;
    if (opensWithHeaders(head)) return InputKind::kMessage;
    return InputKind::kOther;
}

bool isMaildir(const std::string& path) {
    std::error_code ec;
    std::filesystem::path folder(path);
    return std::filesystem::is_directory(folder / "cur", ec) &&
           std::filesystem::is_directory(folder / "new", ec) &&
           std::filesystem::is_directory(folder / "tmp", ec);
}

InputKind detectInputKind(const std::string& path) {
    if (isMaildir(path)) return InputKind::kMaildir;
    // Only a regular file can be looked at without taking bytes from
    // whoever reads it next (a pipe, a terminal).
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) return InputKind::kOther;
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return InputKind::kOther;
    char head[kKindHeadBytes];
    size_t got = 0;
    while (got < sizeof head) {
        ssize_t n = ::read(fd, head + got, sizeof head - got);
        if (n <= 0) break;
        got += static_cast<size_t>(n);
    }
    ::close(fd);
    return detectKindOfHead(std::string_view(head, got));
}

}  // namespace tnefmail
