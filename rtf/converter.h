// Readable bodies from RTF: the public face of rtf/.
//
// An RtfConverter takes an RTF document in chunks of any size and writes
// UTF-8 to an OutputSink as it goes:
//   - HTML (OutputForm::kHtml): the HTML an RTF body encapsulates
//     (\fromhtml1), as the message's own HTML; for any other document a
//     whole HTML document of our own, every text character escaped.
//   - text (OutputForm::kText): the text of the document; for encapsulated
//     text (\fromtext) exactly that text, for encapsulated HTML the text an
//     RTF reader shows, the HTML tags left out.
// Line ends are CRLF. Nothing in the input is trusted: any bytes give a
// defined output, and a broken document gives what was read of it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "rtf/code_pages.h"
#include "rtf/encapsulation.h"
#include "rtf/output_sink.h"

namespace tnefrtf {

enum class OutputForm { kText, kHtml };

enum class ConversionStatus {
    kComplete,      // the document was read to its closing brace
    kTruncated,     // the input ended inside the document; what was read is written
    kNotRtf,        // the input does not begin with {\rtf; it was read as RTF all the same
    kInputFailed,   // reading the input failed; what was read is written
    kOutputFailed,  // the sink refused a write
};

struct ConversionResult {
    ConversionStatus status = ConversionStatus::kComplete;
    Encapsulation encapsulation = Encapsulation::kUnknown;
    uint64_t bytesRead = 0;
};

// Words for a status, for messages.
const char* conversionStatusText(ConversionStatus status);

class RtfConverter {
public:
    // `codePages` reads the document's code pages (rtf/host_code_pages.h
    // has the host's); null reads only code page 1252 and ISO-8859-1.
    // Both it and `output` must outlive the converter.
    RtfConverter(OutputForm form, OutputSink& output, CodePageDecoder* codePages = nullptr);
    ~RtfConverter();
    RtfConverter(const RtfConverter&) = delete;
    RtfConverter& operator=(const RtfConverter&) = delete;

    // The next piece of the document; false once the output has failed.
    bool write(std::string_view chunk);
    // The input ends: the rest of the output is written.
    ConversionResult finish();
    // Known once the document's header has been read (within its first
    // few hundred bytes), kUnknown before.
    Encapsulation encapsulation() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

// The whole document at once.
ConversionResult convertRtf(std::string_view rtf, OutputForm form, OutputSink& output,
                            CodePageDecoder* codePages = nullptr);

// What the head of an RTF document says it encapsulates; kUnknown when
// `head` ends before the header does.
Encapsulation detectEncapsulation(std::string_view head);

}  // namespace tnefrtf
