#include "mail/unwrap.h"

#include <unistd.h>

#include <filesystem>
#include <memory>
#include <regex>

#include "mail/mail_input.h"
#include "mail/output_sink.h"
#include "mail/payload_store.h"
#include "mail/replacement_file.h"
#include "mail/splice.h"
#include "mail/tnef_to_mime.h"

namespace tnefmail {

using namespace tnefclient;

namespace {

// What became of one message's TNEF parts.
struct MessageOutcome {
    size_t replaced = 0;
    std::vector<std::string> problems;
    // The content of the new parts, read when the message is written.
    std::vector<std::unique_ptr<PayloadStore>> stores;
};

std::string partPlace(const TnefPart& tnef) {
    std::string place = "message " + std::to_string(tnef.message.number);
    if (tnef.message.messageId) place += " " + *tnef.message.messageId;
    place += ", MIME part " + tnef.mimePath;
    if (tnef.fileName) place += " (" + *tnef.fileName + ")";
    return place;
}

class Unwrapper {
public:
    Unwrapper(const ReaderModule& module, HostContext* host, UnwrapReport& report)
        : module_(module), host_(host), report_(report) {}

    MessageOutcome unwrap(MailMessage& mail) {
        MessageOutcome outcome;
        for (const TnefPart& tnef : mail.tnefParts) {
            std::string problem;
            if (unwrapPart(tnef, outcome, &problem)) {
                ++outcome.replaced;
                // The correlator names the TNEF part that is gone; an mbox's
                // Content-Length no longer holds.
                g_mime_object_remove_header(GMIME_OBJECT(mail.message), "X-MS-TNEF-Correlator");
                g_mime_object_remove_header(GMIME_OBJECT(mail.message), "Content-Length");
            } else {
                outcome.problems.push_back(partPlace(tnef) + ": left as it was: " + problem);
            }
        }
        ++report_.messages;
        report_.tnefParts += mail.tnefParts.size();
        report_.replaced += outcome.replaced;
        report_.problems.insert(report_.problems.end(), outcome.problems.begin(),
                                outcome.problems.end());
        return outcome;
    }

private:
    bool unwrapPart(const TnefPart& tnef, MessageOutcome& outcome, std::string* problem) {
        if (tnef.signedOver) {
            *problem = "it is signed (multipart/signed), and changing it would break the signature";
            return false;
        }
        std::unique_ptr<tnefhost::HostIo> decoded = decodePart(tnef.part, problem);
        if (!decoded) return false;
        Session session(module_, host_);
        Opened opened = session.openIo(std::move(decoded), {}, problem);
        if (opened == Opened::kOk && session.openStatus() != kTnefOk) {
            *problem = "damaged TNEF stream: " + statusText(session.openStatus());
            return false;
        }
        if (opened != Opened::kOk) return false;
        auto store = std::make_unique<PayloadStore>();
        if (!store->open(problem)) return false;
        ConvertedTnef converted;
        TnefConverter converter(*store);
        if (!converter.convert(session, &converted, problem)) return false;
        spliceConverted(tnef, converted);
        outcome.stores.push_back(std::move(store));
        return true;
    }

    const ReaderModule& module_;
    HostContext* host_;
    UnwrapReport& report_;
};

// Writes one message: as it came when nothing changed, else serialised
// after its mbox "From " line, with the blank line that ends an mbox
// message before the next one.
bool writeMessage(OutputSink& sink, const MailMessage& mail, const MessageOutcome& outcome,
                  bool mbox) {
    if (outcome.replaced == 0) return sink.copyRange(mail.fd, mail.begin, mail.end);
    if (mbox && !sink.copyRange(mail.fd, mail.begin, mail.headersBegin)) return false;
    if (!sink.writeObject(GMIME_OBJECT(mail.message))) return false;
    return !mbox || sink.endWithLineFeeds(mail.lastInFile ? 1 : 2);
}

// A maildir file name carries the message's size (",S=") and sometimes its
// size with CRLF line ends (",W="); both follow the new content.
std::string maildirNameFor(const std::string& path, int64_t bytes, int64_t lineFeeds) {
    std::filesystem::path file(path);
    std::string name = file.filename().string();
    size_t info = name.find(':');
    std::string base = name.substr(0, info), flags = info == std::string::npos ? "" : name.substr(info);
    base = std::regex_replace(base, std::regex(",S=[0-9]+"), ",S=" + std::to_string(bytes));
    base = std::regex_replace(base, std::regex(",W=[0-9]+"), ",W=" + std::to_string(bytes + lineFeeds));
    return (file.parent_path() / (base + flags)).string();
}

// Unwraps one file into `sink`; false when the output failed.
bool unwrapFile(MailInput& input, Unwrapper& unwrapper, OutputSink& sink, bool* clean,
                std::string* error) {
    bool mbox = input.kind() == InputKind::kMbox;
    bool written = true;
    input.forEachMessage([&](MailMessage& mail) {
        MessageOutcome outcome = unwrapper.unwrap(mail);
        if (!outcome.problems.empty()) *clean = false;
        written = writeMessage(sink, mail, outcome, mbox);
        return written;
    });
    if (!written || !sink.flush()) {
        *error = "cannot write the output: " + sink.error();
        return false;
    }
    return true;
}

void unwrapMaildir(MailInput& input, Unwrapper& unwrapper, UnwrapReport& report) {
    input.forEachMessage(
        [&](MailMessage& mail) {
            MessageOutcome outcome = unwrapper.unwrap(mail);
            if (outcome.replaced == 0 || !outcome.problems.empty()) return true;
            ReplacementFile file;
            std::string error;
            if (!file.create(mail.info.file, &error)) {
                report.error = error;
                return false;
            }
            OutputSink sink(file.fd());
            if (!writeMessage(sink, mail, outcome, false) || !sink.flush()) {
                report.error = mail.info.file + ": cannot write the new file: " + sink.error();
                return false;
            }
            if (!file.commit(maildirNameFor(mail.info.file, sink.bytes(), sink.lineFeeds()), &error)) {
                report.error = error;
                return false;
            }
            ++report.filesRewritten;
            return true;
        });
}

}  // namespace

UnwrapReport unwrapMail(const ReaderModule& module, HostContext* host, const UnwrapRequest& request) {
    UnwrapReport report;
    if (request.inPlace && (request.input == "-" || request.output)) {
        report.usageError = true;
        report.error = request.input == "-" ? "standard input can't be rewritten in place"
                                            : "--in-place and -o exclude each other";
        return report;
    }
    std::string error;
    std::unique_ptr<MailInput> input = MailInput::open(request.input, &error);
    if (!input) {
        report.error = error;
        return report;
    }
    report.kind = input->kind();
    // Anything else is read as one message: a filter must pass on what it
    // doesn't understand as it came.
    if (input->kind() == InputKind::kTnef) {
        report.error = "a raw TNEF stream, not mail: use extract";
        return report;
    }
    Unwrapper unwrapper(module, host, report);
    if (input->kind() == InputKind::kMaildir) {
        if (!request.inPlace) {
            report.usageError = true;
            report.error = "a maildir is unwrapped in place: add --in-place";
            return report;
        }
        unwrapMaildir(*input, unwrapper, report);
        return report;
    }
    bool clean = true;
    if (!request.inPlace && !request.output) {
        OutputSink sink(STDOUT_FILENO);
        if (!unwrapFile(*input, unwrapper, sink, &clean, &error)) report.error = error;
        return report;
    }
    const std::string& target = request.inPlace ? request.input : *request.output;
    ReplacementFile file;
    if (!file.create(target, &error)) {
        report.error = error;
        return report;
    }
    OutputSink sink(file.fd());
    if (!unwrapFile(*input, unwrapper, sink, &clean, &error)) {
        report.error = error;
        return report;
    }
    // In place, a file changes only when every TNEF part in it was unwrapped.
    if (request.inPlace && (!clean || report.replaced == 0)) return report;
    if (!file.commit(target, &error)) {
        report.error = error;
        return report;
    }
    report.filesRewritten = 1;
    return report;
}

}  // namespace tnefmail
