#include "rtf/io_object_adapters.h"

#include <vector>

namespace tnefrtf {

namespace {

constexpr uint32_t kReadSize = 64 * 1024;
constexpr size_t kLargestWrite = 1 << 30;

}  // namespace

bool IoObjectSink::write(std::string_view bytes) {
    if (output_ == nullptr || output_->write == nullptr) return false;
    while (!bytes.empty()) {
        size_t count = bytes.size() < kLargestWrite ? bytes.size() : kLargestWrite;
        if (output_->write(output_, bytes.data(), static_cast<uint32_t>(count)) == 0) return false;
        bytes.remove_prefix(count);
    }
    return true;
}

ConversionResult convertRtf(IoObject* input, OutputForm form, OutputSink& output,
                            CodePageDecoder* codePages) {
    RtfConverter converter(form, output, codePages);
    // A read that fails looks like the end, so the length read is held
    // against the length the object has.
    bool failed = input == nullptr || input->read == nullptr ||
                  (input->seek != nullptr && input->seek(input, 0, kSeekSet) == 0);
    std::vector<char> buffer(failed ? 0 : kReadSize);
    uint64_t total = 0;
    bool outputFailed = false;
    while (!failed && !outputFailed) {
        int32_t count = input->read(input, buffer.data(), kReadSize);
        if (count == 0) break;
        if (count < 0 || static_cast<uint32_t>(count) > kReadSize) {
            failed = true;
            break;
        }
        total += static_cast<uint32_t>(count);
        outputFailed = !converter.write(std::string_view(buffer.data(), static_cast<size_t>(count)));
    }
    if (!failed && !outputFailed && input->size > 0 && total < static_cast<uint64_t>(input->size)) {
        failed = true;
    }
    ConversionResult result = converter.finish();
    if (failed && result.status != ConversionStatus::kOutputFailed) {
        result.status = ConversionStatus::kInputFailed;
    }
    return result;
}

}  // namespace tnefrtf
