// The RTF readers, in MB of RTF read per second: de-encapsulation of HTML
// as Outlook encapsulates it, text-heavy native RTF and native RTF thick
// with formatting and tables, each to HTML and to text, fed in 64 KiB
// pieces as from an I/O object.
#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <utility>

#include "host/posix_host.h"
#include "rtf/converter.h"
#include "rtf/host_code_pages.h"
#include "tests/support/lzfu_compressor.h"

namespace {

using tneftest::RtfKind;

// Keeps only the length of what is written.
class CountingSink final : public tnefrtf::OutputSink {
public:
    bool write(std::string_view bytes) override {
        length += bytes.size();
        return true;
    }
    size_t length = 0;
};

const std::string& document(RtfKind kind, size_t size) {
    static std::map<std::pair<int, size_t>, std::string> documents;
    auto key = std::make_pair(static_cast<int>(kind), size);
    auto it = documents.find(key);
    if (it == documents.end()) it = documents.emplace(key, tneftest::rtfDocument(kind, size)).first;
    return it->second;
}

void BM_ConvertRtf(benchmark::State& state) {
    auto kind = static_cast<RtfKind>(state.range(0));
    auto form = static_cast<tnefrtf::OutputForm>(state.range(1));
    const std::string& rtf = document(kind, static_cast<size_t>(state.range(2)));
    constexpr size_t kPiece = 64 * 1024;
    tnefhost::PosixHost host;
    tnefrtf::HostCodePageDecoder codePages(host.context());
    size_t written = 0;
    for (auto _ : state) {
        CountingSink sink;
        tnefrtf::RtfConverter converter(form, sink, &codePages);
        for (size_t at = 0; at < rtf.size(); at += kPiece) converter.write(std::string_view(rtf).substr(at, kPiece));
        if (converter.finish().status != tnefrtf::ConversionStatus::kComplete) {
            state.SkipWithError("the document did not convert completely");
            return;
        }
        written = sink.length;
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(rtf.size()));
    state.counters["output_ratio"] = static_cast<double>(written) / static_cast<double>(rtf.size());
}

BENCHMARK(BM_ConvertRtf)
    ->ArgNames({"kind", "form", "bytes"})
    ->ArgsProduct({{static_cast<int>(RtfKind::kHtmlEncapsulated), static_cast<int>(RtfKind::kTextHeavy),
                    static_cast<int>(RtfKind::kFormatHeavy)},
                   {static_cast<int>(tnefrtf::OutputForm::kText), static_cast<int>(tnefrtf::OutputForm::kHtml)},
                   {64 << 10, 1 << 20, 8 << 20}})
    ->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
