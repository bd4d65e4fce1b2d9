// Sweeps over whole sessions: for rich streams, refuse each allocation in
// turn, of the module's memory and of the host's result memory, and fail
// each I/O call in turn; every run must end each operation with a status it
// may give and leave nothing allocated.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/cfb_writer.h"
#include "tests/support/reader_fixture.h"
#include "tests/support/rich_streams.h"

namespace tneftest {
namespace {

std::string describe(const SessionReport& report) {
    std::string text;
    for (const std::string& line : report.problems) text += line + "\n";
    return text;
}

// The fault-free session of each rich stream is the last run of every sweep
// in EveryFaultInTurn. These ones show that sessions reach the far ends: the
// package unpacked by the OLE library, the rendered message and the raw
// attachment.
TEST(ModuleSweep, FaultFreeSessionsReachTheFarEnds) {
    SessionReport ole = runSession(oleMessage());
    EXPECT_GE(ole.extractions, 24u);
    ASSERT_EQ(ole.plainOutputs.size(), 4u);
    EXPECT_EQ(ole.plainOutputs[1], packagePayload());
    EXPECT_EQ(ole.plainOutputs[3], bytesOf("plain"));
    SessionReport wide = runSession(wideRtfMessage());
    ASSERT_EQ(wide.plainOutputs.size(), 3u);
    EXPECT_EQ(wide.plainOutputs[2], patternBytes(5000));
}

// Real-world streams through the same whole sessions.
TEST(ModuleSweep, CorpusSessionsAreClean) {
    std::string dir = corpusDir();
    if (dir.empty()) GTEST_SKIP() << "no sample folder (set TNEF_CORPUS or provide ../shared/corpus)";
    int sessions = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) {
        if (entry.path().extension() != ".tnef") continue;
        SessionReport report = runSession(readFile(entry.path().string()));
        EXPECT_TRUE(report.problems.empty()) << entry.path() << "\n" << describe(report);
        ++sessions;
    }
    EXPECT_GT(sessions, 0);
}

TEST(ModuleSweep, EveryFaultInTurn) {
    // Each kind of fault: where the session takes it, and where it counts
    // the calls that could take it.
    const struct { const char* name; uint64_t SessionFaults::*fault; uint64_t SessionReport::*calls; } kinds[] = {
        {"module allocation", &SessionFaults::refuseHostRequest, &SessionReport::hostRequests},
        {"result allocation", &SessionFaults::refuseResultRequest, &SessionReport::resultRequests},
        {"I/O call", &SessionFaults::failIoCall, &SessionReport::ioCalls},
    };
    for (const RichStream& stream : richStreams()) {
        for (const auto& kind : kinds) {
            // A fault early on can make the rest of the session longer (a
            // different path), so the sweep runs until a run meets no fault:
            // a session without one, which must have had calls to fail.
            uint64_t n = 1;
            for (;; ++n) {
                SessionFaults faults;
                faults.*kind.fault = n;
                SessionReport report = runSession(stream.bytes, faults);
                ASSERT_TRUE(report.problems.empty())
                    << stream.name << ", " << kind.name << " " << n << " fails\n" << describe(report);
                if (report.*kind.calls < n) break;
            }
            EXPECT_GT(n, 1u) << stream.name << ": no " << kind.name << " to fail";
        }
    }
}

}  // namespace
}  // namespace tneftest
