// The converters over the host's I/O objects (reader/host.h): an RTF body
// read from an IoObject the module extracted into, the result written to
// another. Both objects must be open; neither is closed here.
#pragma once

#include "reader/host.h"
#include "rtf/converter.h"

namespace tnefrtf {

class IoObjectSink final : public OutputSink {
public:
    explicit IoObjectSink(IoObject* output) : output_(output) {}
    bool write(std::string_view bytes) override;

private:
    IoObject* output_;
};

// Reads the whole of `input` (from its start, when it can seek) through a
// converter. Fewer bytes than its `size` field promises is a failed input.
ConversionResult convertRtf(IoObject* input, OutputForm form, OutputSink& output,
                            CodePageDecoder* codePages = nullptr);

}  // namespace tnefrtf
