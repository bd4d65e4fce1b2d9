#include "rtf/converter.h"

#include "rtf/document_reader.h"
#include "rtf/html_deencapsulator.h"
#include "rtf/html_writer.h"
#include "rtf/text_writer.h"
#include "rtf/tokenizer.h"

namespace tnefrtf {

// Picks the writer for the form asked and the document's encapsulation.
class RtfConverter::Impl final : public SinkChooser {
public:
    Impl(OutputForm form, OutputSink& output, CodePageDecoder* codePages)
        : form_(form),
          out_(output),
          codePages_(codePages != nullptr ? *codePages : builtin_),
          reader_(*this, codePages_) {}

    ContentSink& sinkFor(Encapsulation encapsulation, ReadingRules& rules) override {
        bool html = encapsulation == Encapsulation::kHtml;
        // Encapsulated HTML is given back as HTML; as text, it reads like
        // any RTF, where \htmlrtf marks what an RTF reader shows.
        rules.htmlTags = html && form_ == OutputForm::kHtml;
        rules.honourHtmlRtf = rules.htmlTags || encapsulation == Encapsulation::kText;
        if (rules.htmlTags) {
            writer_ = std::make_unique<HtmlDeencapsulator>(out_);
        } else if (form_ == OutputForm::kHtml) {
            writer_ = std::make_unique<HtmlWriter>(out_);
        } else {
            writer_ = std::make_unique<TextWriter>(out_);
        }
        return *writer_;
    }

    bool write(std::string_view chunk) {
        bytesRead_ += chunk.size();
        if (!reader_.ended() && !out_.failed()) tokenizer_.feed(chunk, reader_);
        return !out_.failed();
    }

    ConversionResult finish() {
        if (!finished_) {
            tokenizer_.finish(reader_);
            reader_.finish();
            out_.flush();
            finished_ = true;
        }
        ConversionResult result;
        result.encapsulation = reader_.encapsulation();
        result.bytesRead = bytesRead_;
        if (out_.failed()) {
            result.status = ConversionStatus::kOutputFailed;
        } else if (!reader_.rtfHeader()) {
            result.status = ConversionStatus::kNotRtf;
        } else if (!reader_.ended()) {
            result.status = ConversionStatus::kTruncated;
        }
        return result;
    }

    Encapsulation encapsulation() const { return reader_.encapsulation(); }

private:
    OutputForm form_;
    OutputBuffer out_;
    BuiltinCodePageDecoder builtin_;
    CodePageDecoder& codePages_;
    Tokenizer tokenizer_;
    DocumentReader reader_;
    std::unique_ptr<ContentSink> writer_;
    uint64_t bytesRead_ = 0;
    bool finished_ = false;
};

RtfConverter::RtfConverter(OutputForm form, OutputSink& output, CodePageDecoder* codePages)
    : impl_(std::make_unique<Impl>(form, output, codePages)) {}

RtfConverter::~RtfConverter() = default;

bool RtfConverter::write(std::string_view chunk) { return impl_->write(chunk); }

ConversionResult RtfConverter::finish() { return impl_->finish(); }

Encapsulation RtfConverter::encapsulation() const { return impl_->encapsulation(); }

ConversionResult convertRtf(std::string_view rtf, OutputForm form, OutputSink& output,
                            CodePageDecoder* codePages) {
    RtfConverter converter(form, output, codePages);
    converter.write(rtf);
    return converter.finish();
}

namespace {

// Writes nothing anywhere: reading the head only has to decide.
class DiscardingSink final : public OutputSink {
public:
    bool write(std::string_view) override { return true; }
};

}  // namespace

Encapsulation detectEncapsulation(std::string_view head) {
    DiscardingSink nowhere;
    RtfConverter converter(OutputForm::kText, nowhere);
    converter.write(head);
    return converter.encapsulation();
}

const char* conversionStatusText(ConversionStatus status) {
    switch (status) {
        case ConversionStatus::kComplete: return "complete";
        case ConversionStatus::kTruncated: return "the RTF document ends before its last group closes";
        case ConversionStatus::kNotRtf: return "the body does not begin with an RTF header";
        case ConversionStatus::kInputFailed: return "the RTF body could not be read to its end";
        case ConversionStatus::kOutputFailed: return "the converted body could not be written";
    }
    return "unknown";
}

}  // namespace tnefrtf
