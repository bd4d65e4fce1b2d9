// Mail as the commands' input: the TNEF parts of a message, an mbox or a
// maildir, each opened as a stream, and how they are described.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>

#include "cli/open_input.h"
#include "mail/input_kind.h"
#include "mail/mail_input.h"

namespace tnefcli {

// The FILE argument of list, extract, show and props.
inline constexpr const char* kFileHelp =
    "The TNEF file, mail message, mbox or maildir, or - for standard input";

// --part N: which TNEF part of mail to read.
void addPartOption(CLI::App& command, PartChoice& part);

bool isMail(tnefmail::InputKind kind);
// True when the file or folder at `path` holds mail.
bool isMailFile(const std::string& path);

// Opens the TNEF part `part` of `mail` (none: the only one, or the first
// with a note on stderr). No TNEF part at all gives exit code 2; a part
// number beyond the last gives 1.
OpenedInput openMailPart(const tnefclient::ReaderModule& module, tnefhost::PosixHost& host,
                         tnefmail::MailInput& mail, bool rootEntry, PartChoice part);

struct MailScan {
    size_t messages = 0;
    size_t parts = 0;
};

// Opens every TNEF part of `mail` in turn and hands it to `visit`.
MailScan forEachMailPart(const tnefclient::ReaderModule& module, tnefhost::PosixHost& host,
                         tnefmail::MailInput& mail, bool rootEntry,
                         const std::function<void(const tnefmail::TnefPart&, OpenedInput&)>& visit);

// "no TNEF part in N messages" and the like.
std::string noTnefText(const MailScan& scan);
// "no TNEF part 5 (the input has 2)".
std::string noSuchPartText(size_t wanted, const MailScan& scan);

// {"part", "message": {"number", "file", "messageId", "subject", "from"},
//  "mimePart", "name", "contentType"}
nlohmann::ordered_json partJson(const tnefmail::TnefPart& part);

// Adds "part": partJson(...) to a report when the input was mail.
void addPartKey(nlohmann::ordered_json& report, const OpenedInput& input);

// "part 0: MIME part 2 (winmail.dat) of message 0 <id@host>"
std::string partText(const tnefmail::TnefPart& part);

}  // namespace tnefcli
