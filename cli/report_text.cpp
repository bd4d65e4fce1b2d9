#include "cli/report_text.h"

#include <cstdio>

#include "cli/json_output.h"

namespace tnefcli {

void printError(const std::string& file, const std::string& what) {
    std::fflush(stdout);  // what stdout holds so far comes first
    std::fprintf(stderr, "tnef-reader: %s: %s\n", displayName(file).c_str(), what.c_str());
}

int reportUnusable(const std::string& file, const OpenedInput& input, bool json) {
    std::string error = input.error.value_or("cannot be read");
    if (json) {
        printJson(fileReportHead(file, input.status, error));
    } else {
        printError(file, error);
    }
    return input.exitCode;
}

void warnDamaged(const std::string& file, const OpenedInput& input) {
    if (input.error) printError(file, "damaged stream: " + *input.error + "; reading what can be had");
}

}  // namespace tnefcli
