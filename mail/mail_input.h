// Reading mail: one MIME message, an mbox or a maildir, each message parsed
// by GMime with its content left in the file (persistent streams), and the
// TNEF parts found in it at any depth.
#pragma once

#include <gmime/gmime.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/io_objects.h"
#include "mail/gobject_ref.h"
#include "mail/input_kind.h"

namespace tnefmail {

struct MessageInfo {
    size_t number = 0;  // in the input, from 0
    std::string file;   // the file that holds it (for a maildir, the message's own file)
    std::optional<std::string> messageId, subject, from;  // UTF-8, as the headers say
    size_t tnefParts = 0;  // how many TNEF parts the message holds
};

struct TnefPart {
    size_t number = 0;     // across the whole input, from 0, in reading order
    MessageInfo message;
    std::string mimePath;  // "1", "2.1", ...: the part's place in the MIME tree
    std::optional<std::string> fileName;
    std::string contentType;  // "application/ms-tnef", ...
    GMimePart* part = nullptr;            // lives as long as the message
    GMimeObject* parent = nullptr;        // the multipart, message or message part holding it
    GMimeMessage* owner = nullptr;        // the message whose body it is part of
    bool signedOver = false;  // inside a multipart/signed: changing it breaks the signature
};

// One message, valid inside forEachMessage's callback.
struct MailMessage {
    MessageInfo info;
    GMimeMessage* message = nullptr;  // null for bytes that make no message at all
    int fd = -1;              // the file the message is read from
    int64_t begin = 0;        // its bytes in that file, an mbox's "From " line included:
                              // an mbox's messages cover the whole file
    int64_t headersBegin = 0;
    int64_t end = 0;
    bool lastInFile = true;
    std::vector<TnefPart> tnefParts;
};

// An input opened for reading. Standard input ("-") is spooled to a scratch
// file first: GMime's persistent streams and the module both seek.
class MailInput {
public:
    // Null on failure, with the reason in `error`.
    static std::unique_ptr<MailInput> open(const std::string& path, std::string* error);
    ~MailInput();
    MailInput(const MailInput&) = delete;
    MailInput& operator=(const MailInput&) = delete;

    InputKind kind() const { return kind_; }
    const std::string& path() const { return path_; }
    bool isStandardInput() const { return path_ == "-"; }
    // The readable descriptor of a file input (the scratch file for standard
    // input); -1 for a maildir.
    int fd() const { return fd_; }
    // A maildir's message files: cur/ then new/, each in name order.
    std::vector<std::string> maildirFiles() const;

    // Calls `visit` for every message in order until it returns false. A
    // file that is no mbox is read as one message; bytes that make no
    // message at all are handed on as one without a MIME tree.
    void forEachMessage(const std::function<bool(MailMessage&)>& visit);

private:
    MailInput() = default;
    void readFile(int fd, const std::string& file, InputKind kind, size_t& number,
                  size_t& partNumber, const std::function<bool(MailMessage&)>& visit, bool* stop);

    std::string path_;
    InputKind kind_ = InputKind::kOther;
    int fd_ = -1;
};

// Every TNEF part of `message`: parts of type application/ms-tnef or
// application/vnd.ms-tnef, and parts named winmail.dat or win.dat whose
// content starts with the TNEF signature, inside multiparts and
// message/rfc822 parts to any reasonable depth. Numbered from `firstNumber`.
std::vector<TnefPart> findTnefParts(GMimeMessage* message, const MessageInfo& info,
                                    size_t firstNumber);

// The part's content decoded (base64, quoted-printable, 7bit, 8bit) into a
// scratch file, positioned at its start: an input for Session::openIo.
std::unique_ptr<tnefhost::HostIo> decodePart(GMimePart* part, std::string* error);

// Message-ID, Subject and From of `message` as UTF-8.
void describeMessage(GMimeMessage* message, MessageInfo* info);

}  // namespace tnefmail
