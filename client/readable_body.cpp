// The choice of a readable body and the routes it takes from the module,
// through the RTF readers or the HTML-to-text conversion, to the output.
#include "client/readable_body.h"

#include "client/output_sinks.h"
#include "rtf/host_code_pages.h"

namespace tnefclient {

namespace {

constexpr uint32_t kTagInternetCodepage = 0x3FDE0003;
// Enough of a body to tell its form, and the header of an RTF body.
constexpr size_t kProbeBytes = 8192;

// What the message stores, as the module gives it.
struct StoredBodies {
    int32_t status = kTnefOk;  // of an extraction that failed
    bool text = false;         // a text body
    // The stored body the module puts first when asked: kHtml, one of the
    // RTF sources, or kNone.
    BodySource stored = BodySource::kNone;
};

// Extracts the message into `sink`: the module's status, or
// kTnefOutputUnusable when the sink refused a write.
int32_t extractInto(Session& session, int32_t message, BodyChoice body, bool header,
                    CharsetId charset, tnefrtf::OutputSink& sink) {
    SinkIo output(sink);
    ExtractSettings settings;
    settings.body = body;
    settings.noHeader = !header;
    settings.charset = charset;
    ExtractOutcome outcome = session.extract(message, output.io(), settings);
    if (outcome.status == kTnefOk && output.failed()) return kTnefOutputUnusable;
    return outcome.status;
}

BodySource rtfSource(std::string_view head) {
    switch (tnefrtf::detectEncapsulation(head)) {
        case tnefrtf::Encapsulation::kHtml: return BodySource::kRtfHtml;
        case tnefrtf::Encapsulation::kText: return BodySource::kRtfText;
        default: return BodySource::kRtf;
    }
}

// The module renders a text body in its own order, and a stored body (HTML,
// then RTF) first when asked, falling back on the text body when there is
// none. So where the two renderings differ, the message has both; where
// they are the same, it has one of them: RTF is stored, and the subfile's
// size is that of the text body. Only a subfile the module could not
// describe leaves the form of its one body to be told by its first bytes.
StoredBodies findBodies(Session& session, int32_t message) {
    StoredBodies found;
    HeadSink stored(kProbeBytes);
    found.status = extractInto(session, message, BodyChoice::kHtml, false, kCharsetNone, stored);
    if (found.status != kTnefOk || stored.total() == 0) return found;
    BodyForm form = detectBodyForm(stored.head());
    BodySource storedSource = form == BodyForm::kRtf ? rtfSource(stored.head()) : BodySource::kHtml;
    SubfileEntry entry = session.subfile(message);
    bool described = entry.status == kTnefOk;
    if (described && entry.size == 0) {
        found.stored = storedSource;
        return found;
    }
    HeadSink text(kProbeBytes);
    found.status = extractInto(session, message, BodyChoice::kText, false, kCharsetNone, text);
    if (found.status != kTnefOk) return found;
    if (text.head() != stored.head() || text.total() != stored.total()) {
        found.text = true;
        found.stored = storedSource;
    } else if (form == BodyForm::kRtf || (!described && form == BodyForm::kHtml)) {
        found.stored = storedSource;
    } else {
        found.text = true;
    }
    return found;
}

// An RTF converter as the sink of the module's output.
class ConverterSink final : public tnefrtf::OutputSink {
public:
    explicit ConverterSink(tnefrtf::RtfConverter& converter) : converter_(converter) {}
    bool write(std::string_view bytes) override { return converter_.write(bytes); }

private:
    tnefrtf::RtfConverter& converter_;
};

class BodyWriter {
public:
    BodyWriter(Session& session, int32_t message, const ReadableRequest& request,
               tnefrtf::OutputSink& output)
        : session_(session), message_(message), request_(request), output_(output) {}

    ReadableBody write();

private:
    void writeText(const StoredBodies& found, tnefrtf::OutputSink& text);
    void writeHtml(const StoredBodies& found);
    // The module's rendering with its own header when one is asked for.
    void moduleRendering(BodyChoice body, CharsetId charset, tnefrtf::OutputSink& sink) {
        fail(extractInto(session_, message_, body, request_.header, charset, sink));
    }
    // The body alone from the module.
    void moduleBody(BodyChoice body, CharsetId charset, tnefrtf::OutputSink& sink) {
        fail(extractInto(session_, message_, body, false, charset, sink));
    }
    void clientHeader(ReadableForm form, tnefrtf::OutputSink& sink) {
        if (request_.header) written(writeSummaryHeader(session_, message_, form, sink));
    }
    // The name of the charset of the stored HTML body.
    std::optional<std::string> storedHtmlCharset();
    // The RTF body through a converter of `form` into `sink`.
    void convertRtf(tnefrtf::OutputForm form, tnefrtf::OutputSink& sink);
    // The text of an HTML body in `charset` (empty: as it declares).
    void htmlToText(std::string_view charset, tnefrtf::OutputSink& text, bool fromRtf);
    void written(bool ok) {
        if (!ok) fail(kTnefOutputUnusable);
    }
    void fail(int32_t status) {
        if (result_.status == kTnefOk) result_.status = status;
    }

    Session& session_;
    int32_t message_;
    const ReadableRequest& request_;
    tnefrtf::OutputSink& output_;
    ReadableBody result_;
};

void BodyWriter::convertRtf(tnefrtf::OutputForm form, tnefrtf::OutputSink& sink) {
    tnefrtf::HostCodePageDecoder codePages(session_.host());
    tnefrtf::RtfConverter converter(form, sink, &codePages);
    ConverterSink input(converter);
    moduleBody(BodyChoice::kRtf, kCharsetNone, input);
    tnefrtf::ConversionResult converted = converter.finish();
    result_.rtf = converted.status;
    written(converted.status != tnefrtf::ConversionStatus::kOutputFailed);
}

std::optional<std::string> BodyWriter::storedHtmlCharset() {
    int32_t status = 0;
    std::vector<Element> page = session_.properties(message_, {kTagInternetCodepage}, &status);
    if (page.size() != 1 || !page[0].hasValue || page[0].type != kElementInteger) return std::nullopt;
    return internetCharsetName(page[0].number);
}

void BodyWriter::htmlToText(std::string_view charset, tnefrtf::OutputSink& text, bool fromRtf) {
    std::unique_ptr<HtmlTextConverter> converter = request_.htmlToText(text, charset);
    if (fromRtf) {
        convertRtf(tnefrtf::OutputForm::kHtml, *converter);
    } else {
        moduleBody(BodyChoice::kHtml, kCharsetNone, *converter);
    }
    written(converter->finish());
}

void BodyWriter::writeText(const StoredBodies& found, tnefrtf::OutputSink& text) {
    if (found.text || found.stored == BodySource::kNone) {
        // The module renders a text body, and a message without a body as
        // its header alone.
        result_.source = found.text ? BodySource::kText : BodySource::kNone;
        Utf8Sink utf8(text);
        moduleRendering(BodyChoice::kText, kCharsetUtf8, utf8);
        written(utf8.finish());
        return;
    }
    bool viaHtml = request_.htmlToText != nullptr;
    if (found.stored != BodySource::kHtml || viaHtml) result_.source = found.stored;
    clientHeader(ReadableForm::kText, text);
    if (result_.source == BodySource::kHtml) {
        htmlToText(storedHtmlCharset().value_or(""), text, false);
    } else if (result_.source == BodySource::kRtfHtml && viaHtml) {
        htmlToText("utf-8", text, true);
    } else if (result_.source != BodySource::kNone) {
        convertRtf(tnefrtf::OutputForm::kText, text);
    }
}

void BodyWriter::writeHtml(const StoredBodies& found) {
    if (found.stored == BodySource::kHtml) {
        result_.source = BodySource::kHtml;
        result_.htmlCharset = storedHtmlCharset();
        moduleRendering(BodyChoice::kHtml, kCharsetNone, output_);
        return;
    }
    bool escapedText = found.stored == BodySource::kNone && found.text && request_.textAsHtml;
    result_.source = found.stored != BodySource::kNone ? found.stored
                     : escapedText                     ? BodySource::kText
                                                       : BodySource::kNone;
    clientHeader(ReadableForm::kHtml, output_);
    if (result_.source == BodySource::kNone) return;
    result_.htmlCharset = "utf-8";
    if (!escapedText) {
        convertRtf(tnefrtf::OutputForm::kHtml, output_);
        return;
    }
    written(output_.write(
        "<html>\r\n<head><meta http-equiv=\"content-type\" content=\"text/html; charset=utf-8\" />"
        "</head>\r\n<body>\r\n<pre>"));
    HtmlEscapeSink escaped(output_);
    Utf8Sink utf8(escaped);
    moduleBody(BodyChoice::kText, kCharsetUtf8, utf8);
    written(utf8.finish() && escaped.finish());
    written(output_.write("</pre>\r\n</body>\r\n</html>\r\n"));
}

ReadableBody BodyWriter::write() {
    StoredBodies found = findBodies(session_, message_);
    if (found.status != kTnefOk) {
        result_.status = found.status;
        return result_;
    }
    ReadableForm form = request_.form;
    if (form == ReadableForm::kAuto) {
        bool html = found.stored == BodySource::kHtml || found.stored == BodySource::kRtfHtml;
        form = html ? ReadableForm::kHtml : ReadableForm::kText;
    }
    result_.form = form;
    if (form == ReadableForm::kHtml) {
        writeHtml(found);
        return result_;
    }
    CharsetSink text(output_, session_.host(), request_.textCharset);
    writeText(found, text);
    written(text.finish());
    return result_;
}

}  // namespace

const char* bodySourceName(BodySource source) {
    switch (source) {
        case BodySource::kText: return "text";
        case BodySource::kHtml: return "html";
        case BodySource::kRtfHtml: return "rtf-html";
        case BodySource::kRtfText: return "rtf-text";
        case BodySource::kRtf: return "rtf";
        default: return "none";
    }
}

ReadableBody writeReadableBody(Session& session, int32_t message, const ReadableRequest& request,
                               tnefrtf::OutputSink& output) {
    return BodyWriter(session, message, request, output).write();
}

std::optional<std::string> internetCharsetName(int64_t codePage) {
    if (codePage == 65001) return "utf-8";
    if (codePage == 20127) return "us-ascii";
    if (codePage == 874 || (codePage >= 1250 && codePage <= 1258)) {
        return "windows-" + std::to_string(codePage);
    }
    if (codePage >= 28591 && codePage <= 28606) return "iso-8859-" + std::to_string(codePage - 28590);
    switch (codePage) {
        case 932: return "shift_jis";
        case 936: return "gb2312";
        case 949: return "ks_c_5601-1987";
        case 950: return "big5";
        case 20866: return "koi8-r";
        case 21866: return "koi8-u";
        case 50220: return "iso-2022-jp";
        case 51932: return "euc-jp";
        case 54936: return "gb18030";
        default: return std::nullopt;
    }
}

}  // namespace tnefclient
