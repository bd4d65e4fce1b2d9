// Opening and listing a stream whose first attachment grows from 1 MiB to
// almost 2 GiB: what the module reads from the input, what the tool's
// read-ahead input then reads from the file, and how long it takes. The
// streams are sparse files (their large data is a hole): opening and listing
// never read that data, and a hole costs no disk.
#include <benchmark/benchmark.h>

#include <string>

#include "bench/counting_io.h"
#include "bench/metered_host.h"
#include "bench/reader_calls.h"
#include "bench/stream_files.h"
#include "client/buffered_io.h"
#include "reader/operations.h"
#include "tests/support/tnef_writer.h"

namespace {

using tnefbench::CountingIo;
using tnefhost::IoOp;

constexpr uint64_t kMiB = uint64_t{1} << 20;

void runOpen(benchmark::State& state, bool list) {
    const uint64_t streamBytes = static_cast<uint64_t>(state.range(0)) * kMiB;
    std::string error;
    const tnefbench::StreamFile* file = tnefbench::streamFile(streamBytes, true, &error);
    if (file == nullptr) {
        state.SkipWithError(error.c_str());
        return;
    }
    tnefbench::MeteredHost host;
    tnefhost::HostMemory results;
    tnefbench::IoTally tally;
    tnefbench::IoTally fileTally;
    uint64_t reads = 0;
    uint64_t fileReads = 0;
    uint64_t seeks = 0;
    int32_t subfiles = 0;
    for (auto _ : state) {
        // module -> counting -> the tool's read-ahead -> fileSide -> file
        tnefhost::FileIo input(file->path, tnefhost::FileIo::Mode::kRead);
        CountingIo fileSide(input);
        tnefclient::ReadAheadIo readAhead(fileSide);
        CountingIo counting(readAhead);
        int32_t status = -1;
        TnefContainer* container =
            tnefOpenContainer(counting.io(), host.context(), 0, 0, 0, &status);
        if (container == nullptr || status != kTnefOk) {
            state.SkipWithError("the stream did not open");
            tnefCloseContainer(container);
            return;
        }
        if (list) subfiles = tnefbench::listContainer(container, results);
        tnefCloseContainer(container);
        if (subfiles < 0) {
            state.SkipWithError("listing failed");
            return;
        }
        tally = counting.tally();
        fileTally = fileSide.tally();
        reads = counting.calls(IoOp::kRead);
        fileReads = fileSide.calls(IoOp::kRead);
        seeks = counting.calls(IoOp::kSeek);
    }
    if (host.memory().liveBlocks() != 0 || results.liveBlocks() != 0) {
        state.SkipWithError("memory left allocated after close");
        return;
    }
    // Figures of one open (every iteration does the same).
    state.counters["stream_MiB"] = static_cast<double>(streamBytes) / kMiB;
    state.counters["bytes_read"] = static_cast<double>(tally.bytesRead);
    state.counters["read_calls"] = static_cast<double>(reads);
    state.counters["seek_calls"] = static_cast<double>(seeks);
    state.counters["largest_read"] = static_cast<double>(tally.largestRead);
    state.counters["file_bytes_read"] = static_cast<double>(fileTally.bytesRead);
    state.counters["file_read_calls"] = static_cast<double>(fileReads);
    state.counters["peak_host_bytes"] = static_cast<double>(host.peakBytes());
    if (list) state.counters["subfiles"] = subfiles;
}

void BM_Open(benchmark::State& state) {
    runOpen(state, false);
}

void BM_OpenAndList(benchmark::State& state) {
    runOpen(state, true);
}

// Stream sizes in MiB, up to the largest a 32-bit record length allows.
void streamSizes(benchmark::internal::Benchmark* bench) {
    bench->ArgName("MiB")->Arg(1)->Arg(64)->Arg(512)->Arg(2040);
}

// For contrast: a stream whose attachment data stands inside the
// attachment's property block (PR_ATTACH_DATA_BIN, as some writers put it,
// and as every OLE object's data stands) rather than in its own data
// record. The module reads a property block whole while opening, so here
// what it reads and holds grows with the attachment. The stream lives in
// memory.
void BM_OpenWithDataInProperties(benchmark::State& state) {
    const size_t dataBytes = static_cast<size_t>(state.range(0)) * kMiB;
    tneftest::TnefWriter w;
    w.version().messageClass("IPM.Note");
    w.messageProps({tneftest::Prop::string8(tneftest::kTagSubject8, "Data in properties")});
    w.attachRendData().attachTitle("INSIDE.BIN");
    w.attachmentProps({tneftest::Prop::int32(tneftest::kTagAttachMethod, 1),
                       tneftest::Prop::string8(tneftest::kTagAttachLongFilename8, "inside.bin"),
                       tneftest::Prop::binary(tneftest::kTagAttachDataBinary,
                                              tneftest::Bytes(dataBytes, 0x5A))});
    tnefbench::MeteredHost host;
    tnefbench::IoTally tally;
    for (auto _ : state) {
        state.PauseTiming();
        tnefhost::MemoryIo input(w.bytes());
        CountingIo counting(input);
        host.resetPeak();
        state.ResumeTiming();
        int32_t status = -1;
        TnefContainer* container =
            tnefOpenContainer(counting.io(), host.context(), 0, 0, 0, &status);
        tnefCloseContainer(container);
        if (container == nullptr || status != kTnefOk) {
            state.SkipWithError("the stream did not open");
            return;
        }
        tally = counting.tally();
    }
    state.counters["attachment_MiB"] = static_cast<double>(dataBytes) / kMiB;
    state.counters["bytes_read"] = static_cast<double>(tally.bytesRead);
    state.counters["largest_read"] = static_cast<double>(tally.largestRead);
    state.counters["peak_host_bytes"] = static_cast<double>(host.peakBytes());
}

BENCHMARK(BM_Open)->Apply(streamSizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_OpenAndList)->Apply(streamSizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_OpenWithDataInProperties)
    ->ArgName("MiB")->Arg(1)->Arg(16)->Arg(64)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
