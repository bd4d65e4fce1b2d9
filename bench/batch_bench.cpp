// Many medium streams processed by one and by two workers, each worker with
// a host context of its own as `tnef-reader batch` runs them: open, list,
// extract every subfile (into outputs that discard the bytes), close. With
// real time measured, items per second is the throughput of all workers
// together, so the two rows show how the work scales with the workers.
#include <benchmark/benchmark.h>

#include <atomic>
#include <string>
#include <vector>

#include "bench/counting_io.h"
#include "bench/metered_host.h"
#include "bench/reader_calls.h"
#include "bench/stream_files.h"
#include "client/buffered_io.h"
#include "reader/operations.h"

namespace {

constexpr uint64_t kMediumBytes = uint64_t{8} << 20;
constexpr int kStreams = 16;

// The streams, written once by whichever worker gets here first.
struct MediumStreams {
    std::vector<std::string> paths;
    std::string error;
};

const MediumStreams& mediumStreams() {
    static const MediumStreams streams = [] {
        MediumStreams made;
        for (int i = 0; i < kStreams; ++i) {
            // Sizes differ by a few KiB so that each stream is a file of its own.
            const tnefbench::StreamFile* file =
                tnefbench::streamFile(kMediumBytes + static_cast<uint64_t>(i) * 4096, false,
                                      &made.error);
            if (file == nullptr) return made;
            made.paths.push_back(file->path);
        }
        return made;
    }();
    return streams;
}

// One stream, as a batch worker handles it; the bytes written, or -1.
int64_t processStream(const std::string& path, tnefbench::MeteredHost& host,
                      tnefhost::HostMemory& results) {
    tnefhost::FileIo file(path, tnefhost::FileIo::Mode::kRead);
    tnefclient::ReadAheadIo input(file);  // as the tool reads its inputs
    int32_t status = -1;
    TnefContainer* container = tnefOpenContainer(input.io(), host.context(), 0, 0, 0, &status);
    if (container == nullptr || status != kTnefOk) {
        tnefCloseContainer(container);
        return -1;
    }
    int32_t subfiles = tnefbench::listContainer(container, results);
    int64_t written = subfiles > 0 ? 0 : -1;
    for (int32_t i = 0; i < subfiles && written >= 0; ++i) {
        tnefbench::DiscardIo output;
        if (tnefbench::extractSubfileTo(container, i, output.io(), results) != kTnefOk) {
            written = -1;
        } else {
            written += output.length();
        }
    }
    tnefCloseContainer(container);
    return written;
}

void BM_BatchWorkers(benchmark::State& state) {
    const MediumStreams& streams = mediumStreams();
    if (streams.paths.size() != kStreams) {
        state.SkipWithError(streams.error.c_str());
        return;
    }
    static std::atomic<uint64_t> next{0};
    tnefbench::MeteredHost host;  // one host context per worker
    tnefhost::HostMemory results;
    int64_t bytes = 0;
    for (auto _ : state) {
        const std::string& path = streams.paths[next++ % streams.paths.size()];
        int64_t written = processStream(path, host, results);
        if (written < 0) {
            state.SkipWithError("a stream failed");
            return;
        }
        bytes += written;
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
    state.SetBytesProcessed(bytes);
}

BENCHMARK(BM_BatchWorkers)
    ->Threads(1)->Threads(2)
    ->UseRealTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);

}  // namespace

BENCHMARK_MAIN();
