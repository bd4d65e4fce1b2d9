// Decoding of compressed RTF, in bytes of RTF text produced per second, for
// three kinds of text: RTF as mail clients write it, text with few repeats
// (mostly literal bytes), and long runs (mostly long references).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <random>
#include <utility>

#include "host/memory.h"
#include "render/rtf_decompress.h"
#include "tests/support/lzfu_compressor.h"

namespace {

using tneftest::Bytes;

enum TextKind { kRtfLike = 0, kFewRepeats = 1, kLongRuns = 2, kHexPicture = 3 };

Bytes rawText(TextKind kind, size_t size) {
    switch (kind) {
        case kRtfLike: return tneftest::sampleRtfText(7, size);
        case kFewRepeats: {
            std::mt19937 random(11);
            Bytes text(size);
            for (uint8_t& b : text) b = static_cast<uint8_t>(' ' + random() % 95);
            return text;
        }
        case kHexPicture: {
            // A picture as RTF carries it: random bytes in hex digits, lines of 128.
            std::mt19937 random(13);
            static const char digits[] = "0123456789abcdef";
            Bytes text;
            const std::string head = "{\\pict\\pngblip\\picw2000\\pich1500\r\n";
            text.insert(text.end(), head.begin(), head.end());
            while (text.size() < size) {
                uint32_t byte = random() & 0xFF;
                text.push_back(static_cast<uint8_t>(digits[byte >> 4]));
                text.push_back(static_cast<uint8_t>(digits[byte & 15]));
                if (text.size() % 130 == 128) {
                    text.push_back('\r');
                    text.push_back('\n');
                }
            }
            text.resize(size);
            return text;
        }
        case kLongRuns: {
            Bytes text(size);
            for (size_t i = 0; i < size; ++i) text[i] = static_cast<uint8_t>('a' + (i / 4096) % 26);
            return text;
        }
    }
    return {};
}

struct Sample {
    Bytes raw;
    Bytes value;  // compressed
};

// The sample of each (kind, size), made once per run.
const Sample& sample(TextKind kind, size_t size) {
    static std::map<std::pair<int, size_t>, Sample> samples;
    auto key = std::make_pair(static_cast<int>(kind), size);
    auto it = samples.find(key);
    if (it == samples.end()) {
        Bytes raw = rawText(kind, size);
        Bytes value = tneftest::compressRtf(raw);
        it = samples.emplace(key, Sample{std::move(raw), std::move(value)}).first;
    }
    return it->second;
}

// Decodes the sample once and compares with its raw text.
bool decodesBack(const Sample& sample) {
    tnefhost::HostMemory memory;
    uint8_t* text = nullptr;
    uint32_t textSize = 0;
    if (tnefDecompressRtf(memory.allocator(), sample.value.data(),
                          static_cast<int32_t>(sample.value.size()), &text, &textSize) != kTnefOk) {
        return false;
    }
    bool same = textSize == sample.raw.size() &&
                std::equal(sample.raw.begin(), sample.raw.end(), text);
    memory.release(text);
    return same;
}

void BM_DecompressRtf(benchmark::State& state) {
    auto kind = static_cast<TextKind>(state.range(0));
    auto size = static_cast<size_t>(state.range(1));
    const Sample& input = sample(kind, size);
    const Bytes& value = input.value;
    if (!decodesBack(input)) {
        state.SkipWithError("the decoded text differs from the raw text");
        return;
    }
    tnefhost::HostMemory memory;
    for (auto _ : state) {
        uint8_t* text = nullptr;
        uint32_t textSize = 0;
        int32_t status = tnefDecompressRtf(memory.allocator(), value.data(),
                                           static_cast<int32_t>(value.size()), &text, &textSize);
        if (status != kTnefOk) {
            state.SkipWithError("decoding failed");
            return;
        }
        benchmark::DoNotOptimize(text);
        benchmark::DoNotOptimize(textSize);
        memory.release(text);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(size));
    state.counters["compressed_bytes"] = static_cast<double>(value.size());
    state.counters["ratio"] = static_cast<double>(size) / static_cast<double>(value.size());
}

BENCHMARK(BM_DecompressRtf)
    ->ArgNames({"kind", "bytes"})
    ->ArgsProduct({{kRtfLike, kHexPicture, kFewRepeats, kLongRuns}, {64 << 10, 1 << 20, 8 << 20}})
    ->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
