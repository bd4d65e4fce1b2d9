#include "cli/mail_parts.h"

#include <cstdio>

#include "cli/exit_codes.h"

namespace tnefcli {

using namespace tnefclient;
using tnefmail::InputKind;
using tnefmail::MailInput;
using tnefmail::MailMessage;
using tnefmail::TnefPart;

namespace {

nlohmann::ordered_json orNull(const std::optional<std::string>& text) {
    return text ? nlohmann::ordered_json(*text) : nlohmann::ordered_json(nullptr);
}

// The part's description, without the GMime objects it pointed into.
TnefPart described(const TnefPart& part) {
    TnefPart copy = part;
    copy.part = nullptr;
    copy.parent = nullptr;
    copy.owner = nullptr;
    return copy;
}

OpenedInput openPart(const ReaderModule& module, tnefhost::PosixHost& host, const TnefPart& part,
                     bool rootEntry) {
    std::string error;
    std::unique_ptr<tnefhost::HostIo> decoded = tnefmail::decodePart(part.part, &error);
    OpenedInput opened;
    if (decoded) {
        opened = openDecoded(module, host, std::move(decoded), rootEntry);
    } else {
        opened.exitCode = kExitUnreadable;
        opened.error = error;
    }
    opened.part = described(part);
    return opened;
}

}  // namespace

void addPartOption(CLI::App& command, PartChoice& part) {
    command.add_option("--part", part,
                       "For mail: the TNEF part to read, as numbered by list (default: the first)")
        ->check(CLI::NonNegativeNumber);
}

bool isMail(InputKind kind) {
    return kind == InputKind::kMessage || kind == InputKind::kMbox || kind == InputKind::kMaildir;
}

bool isMailFile(const std::string& path) { return isMail(tnefmail::detectInputKind(path)); }

std::string noTnefText(const MailScan& scan) {
    if (scan.messages == 1) return "no TNEF part in the message";
    return "no TNEF part in " + std::to_string(scan.messages) + " messages";
}

std::string noSuchPartText(size_t wanted, const MailScan& scan) {
    return "no TNEF part " + std::to_string(wanted) + " (the input has " + std::to_string(scan.parts) + ")";
}

MailScan forEachMailPart(const ReaderModule& module, tnefhost::PosixHost& host, MailInput& mail,
                         bool rootEntry,
                         const std::function<void(const TnefPart&, OpenedInput&)>& visit) {
    MailScan scan;
    mail.forEachMessage([&](MailMessage& message) {
        ++scan.messages;
        for (const TnefPart& part : message.tnefParts) {
            ++scan.parts;
            OpenedInput opened = openPart(module, host, part, rootEntry);
            visit(*opened.part, opened);
        }
        return true;
    });
    return scan;
}

OpenedInput openMailPart(const ReaderModule& module, tnefhost::PosixHost& host, MailInput& mail,
                         bool rootEntry, PartChoice part) {
    size_t wanted = part.value_or(0);
    MailScan scan;
    std::optional<OpenedInput> chosen;
    mail.forEachMessage([&](MailMessage& message) {
        ++scan.messages;
        for (const TnefPart& found : message.tnefParts) {
            if (scan.parts++ == wanted) chosen = openPart(module, host, found, rootEntry);
        }
        return true;
    });
    if (scan.parts == 0) {
        OpenedInput none;
        none.exitCode = kExitUnreadable;
        none.error = noTnefText(scan);
        return none;
    }
    if (!chosen) {
        OpenedInput none;
        none.exitCode = kExitUsage;
        none.error = noSuchPartText(wanted, scan);
        return none;
    }
    if (!part && scan.parts > 1) {
        std::fprintf(stderr, "tnef-reader: %s: %zu TNEF parts; reading part 0 (choose with --part N)\n",
                     displayName(mail.path()).c_str(), scan.parts);
    }
    return std::move(*chosen);
}

nlohmann::ordered_json partJson(const TnefPart& part) {
    nlohmann::ordered_json message = {{"number", part.message.number},
                                      {"file", part.message.file},
                                      {"messageId", orNull(part.message.messageId)},
                                      {"subject", orNull(part.message.subject)},
                                      {"from", orNull(part.message.from)}};
    return {{"part", part.number},
            {"message", message},
            {"mimePart", part.mimePath},
            {"name", orNull(part.fileName)},
            {"contentType", part.contentType}};
}

void addPartKey(nlohmann::ordered_json& report, const OpenedInput& input) {
    if (input.part) report["part"] = partJson(*input.part);
}

std::string partText(const TnefPart& part) {
    std::string text = "part " + std::to_string(part.number) + ": MIME part " + part.mimePath;
    if (part.fileName) text += " (" + *part.fileName + ")";
    text += " of message " + std::to_string(part.message.number);
    if (part.message.messageId) text += " " + *part.message.messageId;
    return text;
}

}  // namespace tnefcli
