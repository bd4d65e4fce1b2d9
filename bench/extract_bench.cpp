// Extraction of the large attachment of a stream: throughput into an output
// that discards the bytes and into a file, against copies of the same file
// made without the module (what `cat` does), the two halves of such a copy,
// and the memory an extraction needs as the attachment grows.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string>
#include <vector>

#include "bench/counting_io.h"
#include "bench/mapped_window_io.h"
#include "bench/metered_host.h"
#include "bench/process_memory.h"
#include "bench/reader_calls.h"
#include "bench/stream_files.h"
#include "client/buffered_io.h"
#include "reader/operations.h"

namespace {

using tnefbench::CountingIo;
using tnefhost::IoOp;

constexpr uint64_t kMiB = uint64_t{1} << 20;
constexpr int32_t kLargeAttachment = 1;     // subfile 0 is the message
constexpr size_t kCopyBlock = 128 * 1024;    // GNU cat's buffer for regular files
constexpr size_t kMappedWindow = 4 << 20;

// The I/O objects between the module and the files (the second argument).
enum IoKind {
    kPlainFiles = 0,    // the host's FileIo at both ends: a system call per module call
    kToolBuffers = 1,   // the tool's read-ahead input and write-behind output (client/buffered_io.h)
    kWriteBehind = 2,   // plain input, write-behind output
    kMappedInput = 3,   // a mapped window of the input, write-behind output
};

const tnefbench::StreamFile* stream(benchmark::State& state) {
    std::string error;
    const tnefbench::StreamFile* file =
        tnefbench::streamFile(static_cast<uint64_t>(state.range(0)) * kMiB, false, &error);
    if (file == nullptr) state.SkipWithError(error.c_str());
    return file;
}

// Everything one extraction did, for the counters.
struct ExtractFigures {
    uint64_t moduleReads = 0;   // reads the module asked for while extracting
    uint64_t fileReads = 0;     // reads that reached the input file
    uint64_t moduleWrites = 0;  // writes the module made
    uint64_t fileWrites = 0;    // writes that reached the output
    uint64_t largestFileRead = 0;
    uint64_t largestFileWrite = 0;
    size_t peakHostBytes = 0;
    int64_t residentGrowthKib = 0;
};

// Opens the stream, extracts the large attachment into `output` and closes.
bool extractOnce(const tnefbench::StreamFile& file, tnefhost::HostIo& output, IoKind kind,
                 ExtractFigures* figures) {
    tnefbench::MeteredHost host;
    tnefhost::HostMemory results;
    // module -> moduleInput -> [buffering] -> fileInput -> file
    std::unique_ptr<tnefhost::HostIo> inputFile;
    if (kind == kMappedInput) {
        inputFile = std::make_unique<tnefbench::MappedWindowIo>(file.path, kMappedWindow);
    } else {
        inputFile = std::make_unique<tnefhost::FileIo>(file.path, tnefhost::FileIo::Mode::kRead);
    }
    CountingIo fileInput(*inputFile);
    CountingIo fileOutput(output);
    std::unique_ptr<tnefhost::HostIo> reader, writer;
    if (kind == kToolBuffers) reader = std::make_unique<tnefclient::ReadAheadIo>(fileInput);
    if (kind != kPlainFiles) writer = std::make_unique<tnefclient::WriteBehindIo>(fileOutput);
    CountingIo moduleInput(reader ? *reader : fileInput);
    CountingIo moduleOutput(writer ? *writer : fileOutput);

    int32_t status = -1;
    TnefContainer* container =
        tnefOpenContainer(moduleInput.io(), host.context(), 0, 0, 0, &status);
    if (container == nullptr || status != kTnefOk) {
        tnefCloseContainer(container);
        return false;
    }
    uint64_t moduleReadsBefore = moduleInput.calls(IoOp::kRead);
    uint64_t fileReadsBefore = fileInput.calls(IoOp::kRead);
    status = tnefbench::extractSubfileTo(container, kLargeAttachment, moduleOutput.io(), results);
    figures->moduleReads = moduleInput.calls(IoOp::kRead) - moduleReadsBefore;
    figures->fileReads = fileInput.calls(IoOp::kRead) - fileReadsBefore;
    tnefCloseContainer(container);
    figures->moduleWrites = moduleOutput.calls(IoOp::kWrite);
    figures->fileWrites = fileOutput.calls(IoOp::kWrite);
    figures->largestFileRead = fileInput.tally().largestRead;
    figures->largestFileWrite = fileOutput.tally().largestWrite;
    figures->peakHostBytes = std::max(figures->peakHostBytes, host.peakBytes());
    return status == kTnefOk && moduleOutput.io()->size == file.layout.largeDataBytes &&
           fileOutput.tally().bytesWritten == file.layout.largeDataBytes &&
           host.memory().liveBlocks() == 0 && results.liveBlocks() == 0;
}

void reportFigures(benchmark::State& state, const tnefbench::StreamFile& file,
                   const ExtractFigures& figures) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * file.layout.largeDataBytes);
    state.counters["attachment_MiB"] = static_cast<double>(file.layout.largeDataBytes) / kMiB;
    state.counters["module_reads"] = static_cast<double>(figures.moduleReads);
    state.counters["file_reads"] = static_cast<double>(figures.fileReads);
    state.counters["module_writes"] = static_cast<double>(figures.moduleWrites);
    state.counters["file_writes"] = static_cast<double>(figures.fileWrites);
    state.counters["largest_file_read"] = static_cast<double>(figures.largestFileRead);
    state.counters["largest_file_write"] = static_cast<double>(figures.largestFileWrite);
    state.counters["peak_host_bytes"] = static_cast<double>(figures.peakHostBytes);
    if (figures.residentGrowthKib >= 0) {
        state.counters["rss_growth_KiB"] = static_cast<double>(figures.residentGrowthKib);
    }
}

// Into an output that keeps nothing: the module's own cost, and the memory it
// needs. rss_growth_KiB is how far the process's resident size rose above
// what it was before each extraction (page cache is not part of it).
void BM_ExtractToDiscard(benchmark::State& state) {
    const tnefbench::StreamFile* file = stream(state);
    if (file == nullptr) return;
    auto kind = static_cast<IoKind>(state.range(1));
    ExtractFigures figures;
    {
        // Once before measuring: what the process maps on first use is no
        // part of what an extraction needs.
        tnefbench::DiscardIo output;
        ExtractFigures warmUp;
        extractOnce(*file, output, kind, &warmUp);
    }
    bool peaks = true;
    for (auto _ : state) {
        peaks = peaks && tnefbench::resetResidentPeak();
        int64_t before = tnefbench::residentKib();
        tnefbench::DiscardIo output;
        if (!extractOnce(*file, output, kind, &figures)) {
            state.SkipWithError("extraction failed");
            return;
        }
        figures.residentGrowthKib =
            std::max(figures.residentGrowthKib, tnefbench::residentPeakKib() - before);
    }
    if (!peaks) figures.residentGrowthKib = -1;
    reportFigures(state, *file, figures);
}

// Into a new file beside the stream, removed after each run before it is
// ever written back, so the disk itself stays out of the figures.
void BM_ExtractToFile(benchmark::State& state) {
    const tnefbench::StreamFile* file = stream(state);
    if (file == nullptr) return;
    auto kind = static_cast<IoKind>(state.range(1));
    const std::string target = tnefbench::scratchPath("extracted.bin");
    ExtractFigures figures;
    for (auto _ : state) {
        tnefhost::FileIo output(target, tnefhost::FileIo::Mode::kWrite);
        if (!extractOnce(*file, output, kind, &figures)) {
            state.SkipWithError("extraction failed");
            return;
        }
        state.PauseTiming();
        ::unlink(target.c_str());
        state.ResumeTiming();
    }
    figures.residentGrowthKib = -1;
    reportFigures(state, *file, figures);
}

// Copies of the whole stream file without the module.
enum CopyKind {
    kReadWrite = 0,      // read and write in 128 KiB blocks: cat before coreutils 9, dd
    kCopyFileRange = 1,  // copy_file_range: what cat of coreutils 9 does between files
    kReadHalf = 2,       // only the reads of kReadWrite
    kWriteHalf = 3,      // only the writes of kReadWrite (of a buffer that never changes)
};

bool copyFile(const std::string& from, const std::string& to, CopyKind kind, uint64_t bytes,
              std::vector<char>& block) {
    int in = kind == kWriteHalf ? -1 : ::open(from.c_str(), O_RDONLY | O_CLOEXEC);
    int out = kind == kReadHalf ? -1
                                : ::open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    bool ok = (kind == kWriteHalf || in >= 0) && (kind == kReadHalf || out >= 0);
    for (uint64_t left = bytes; ok && left > 0;) {
        ssize_t n = 0;
        size_t want = static_cast<size_t>(std::min<uint64_t>(left, block.size()));
        switch (kind) {
            case kCopyFileRange: n = ::copy_file_range(in, nullptr, out, nullptr, left, 0); break;
            case kWriteHalf: n = ::write(out, block.data(), want); break;
            case kReadHalf: n = ::read(in, block.data(), want); break;
            case kReadWrite:
                n = ::read(in, block.data(), want);
                if (n > 0 && ::write(out, block.data(), static_cast<size_t>(n)) != n) n = -1;
                break;
        }
        if (n < 0 && errno == EINTR) continue;
        ok = n > 0;
        if (ok) left -= static_cast<uint64_t>(n);
    }
    if (in >= 0) ::close(in);
    if (out >= 0) ::close(out);
    return ok;
}

void BM_Copy(benchmark::State& state) {
    const tnefbench::StreamFile* file = stream(state);
    if (file == nullptr) return;
    auto kind = static_cast<CopyKind>(state.range(1));
    const std::string target = tnefbench::scratchPath("copied.bin");
    std::vector<char> block(kCopyBlock, 'x');
    for (auto _ : state) {
        if (!copyFile(file->path, target, kind, file->layout.fileBytes, block)) {
            state.SkipWithError("copy failed");
            return;
        }
        state.PauseTiming();
        ::unlink(target.c_str());
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(file->layout.fileBytes));
    state.counters["file_MiB"] = static_cast<double>(file->layout.fileBytes) / kMiB;
}

BENCHMARK(BM_ExtractToDiscard)
    ->ArgNames({"MiB", "io"})
    ->ArgsProduct({{1, 64, 512}, {kPlainFiles, kToolBuffers}})
    ->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ExtractToFile)
    ->ArgNames({"MiB", "io"})
    ->ArgsProduct({{64, 512}, {kPlainFiles, kToolBuffers, kWriteBehind, kMappedInput}})
    ->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Copy)
    ->ArgNames({"MiB", "copy"})
    ->ArgsProduct({{64, 512}, {kReadWrite, kCopyFileRange, kReadHalf, kWriteHalf}})
    ->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
