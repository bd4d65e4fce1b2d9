#include "cli/report_text.h"

#include <cstdio>

#include "cli/json_output.h"
#include "cli/mail_parts.h"

namespace tnefcli {

void printError(const std::string& file, const std::string& what) {
    std::fflush(stdout);  // what stdout holds so far comes first
    std::fprintf(stderr, "tnef-reader: %s: %s\n", displayName(file).c_str(), what.c_str());
}

int reportUnusable(const std::string& file, const OpenedInput& input, bool json) {
    std::string error = input.error.value_or("cannot be read");
    if (json) {
        auto head = fileReportHead(file, input.status, error);
        addPartKey(head, input);
        printJson(head);
    } else {
        printError(file, error);
    }
    return input.exitCode;
}

void warnDamaged(const std::string& file, const OpenedInput& input) {
    if (input.error) printError(file, "damaged stream: " + *input.error + "; reading what can be had");
}

void warnNested(const std::string& file, const std::string& where, tnefclient::Opened opened,
                const std::string& error) {
    std::string what = "embedded message " + where + ": ";
    if (opened == tnefclient::Opened::kOk) {
        printError(file, what + "damaged stream: " + error + "; reading what can be had");
    } else {
        printError(file, what + error);
    }
}

std::string printable(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        auto byte = static_cast<uint8_t>(c);
        if (byte < 0x20 || byte == 0x7F) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", byte);
            out += escaped;
        } else {
            out += c;
        }
    }
    return out;
}

}  // namespace tnefcli
