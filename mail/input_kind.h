// What an input holds, told from its content, never from its name: a raw
// TNEF stream, one MIME message, an mbox, or a maildir folder.
#pragma once

#include <string>
#include <string_view>

namespace tnefmail {

enum class InputKind {
    kOther,    // none of these: left to the reader module to judge
    kTnef,     // starts with the TNEF signature
    kMessage,  // a header block: one message (.eml, message/rfc822)
    kMbox,     // "From " lines between messages
    kMaildir,  // a folder with cur/, new/ and tmp/
};

// "tnef", "message", "mbox", "maildir", "other".
const char* inputKindName(InputKind kind);

// How many bytes of a file's head detectKindOfHead wants.
constexpr size_t kKindHeadBytes = 4096;

// The kind of a file whose first bytes are `head`.
InputKind detectKindOfHead(std::string_view head);

// The kind of the file or folder at `path`; kOther for what can't be read
// and for anything but a regular file or a maildir.
InputKind detectInputKind(const std::string& path);

// True for a folder that holds cur/, new/ and tmp/.
bool isMaildir(const std::string& path);

}  // namespace tnefmail
