// Extraction into memory and into a file.
#include "client/buffered_io.h"
#include "client/tnef_client.h"

namespace tnefclient {

namespace {

// Closes an output the module left open; false when that close failed.
bool closeIfOpen(tnefhost::HostIo& output) {
    return !output.isOpen() || output.io()->close(output.io()) != 0;
}

}  // namespace

ExtractOutcome Session::extractToMemory(int32_t index, std::vector<uint8_t>* bytes,
                                        const ExtractSettings& settings) {
    tnefhost::MemoryIo output;
    ExtractOutcome outcome = extract(index, output.io(), settings);
    closeIfOpen(output);
    *bytes = outcome.status == kTnefOk ? output.bytes() : std::vector<uint8_t>();
    return outcome;
}

ExtractOutcome Session::extractToFile(int32_t index, const std::string& path,
                                      const ExtractSettings& settings) {
    tnefhost::FileIo file(path, tnefhost::FileIo::Mode::kWrite);
    WriteBehindIo output(file);
    ExtractOutcome outcome = extract(index, output.io(), settings);
    bool closed = closeIfOpen(output);
    if (outcome.status == kTnefOk && (output.failed() || !closed)) {
        outcome.status = kTnefOutputUnusable;
    }
    return outcome;
}

}  // namespace tnefclient
