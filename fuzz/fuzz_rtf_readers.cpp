// The RTF readers on arbitrary documents: both output forms, the document
// whole and cut into small chunks. Findings: a status the input can't
// cause, output that depends on the chunks, output that is not UTF-8, and
// HTML made from native RTF with markup of anything but our own elements.
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/fuzz_finding.h"
#include "host/posix_host.h"
#include "rtf/converter.h"
#include "rtf/host_code_pages.h"

namespace {

struct Output {
    std::string bytes;
    tnefrtf::ConversionResult result;
};

Output convert(std::string_view rtf, tnefrtf::OutputForm form, size_t chunk) {
    static tnefhost::PosixHost host;
    tnefrtf::HostCodePageDecoder codePages(host.context());
    tnefrtf::StringSink sink;
    tnefrtf::RtfConverter converter(form, sink, &codePages);
    for (size_t at = 0; at < rtf.size(); at += chunk) converter.write(rtf.substr(at, chunk));
    tnefrtf::ConversionResult result = converter.finish();
    return {std::move(sink.text), result};
}

bool validUtf8(std::string_view text) {
    for (size_t i = 0; i < text.size();) {
        auto lead = static_cast<uint8_t>(text[i]);
        size_t length = lead < 0x80 ? 1 : lead >= 0xC2 && lead <= 0xDF ? 2 : lead >= 0xE0 && lead <= 0xEF ? 3
                                      : lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
        if (length == 0 || i + length > text.size()) return false;
        for (size_t k = 1; k < length; ++k) {
            if ((static_cast<uint8_t>(text[i + k]) & 0xC0) != 0x80) return false;
        }
        i += length;
    }
    return true;
}

// Whether every '<' of HTML made from native RTF opens one of the
// elements the writer makes.
bool onlyOurMarkup(std::string_view html) {
    static const std::string_view kElements[] = {
        "<!DOCTYPE html>", "<html>", "</html>", "<head>", "</head>", "<meta charset=\"utf-8\">",
        "<style>", "</style>", "<body>", "</body>", "<p>", "</p>", "<br>", "<b>", "</b>", "<i>",
        "</i>", "<u>", "</u>", "<a href=\"", "</a>", "<table>", "</table>", "<tr>", "</tr>", "<td>", "</td>",
    };
    for (size_t at = html.find('<'); at != std::string_view::npos; at = html.find('<', at + 1)) {
        bool ours = false;
        for (std::string_view element : kElements) ours = ours || html.substr(at, element.size()) == element;
        if (!ours) return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view rtf(reinterpret_cast<const char*>(data), size);
    size_t chunk = 1 + size % 17;
    for (tnefrtf::OutputForm form : {tnefrtf::OutputForm::kText, tnefrtf::OutputForm::kHtml}) {
        Output whole = convert(rtf, form, size + 1);
        Output pieces = convert(rtf, form, chunk);
        tnefrtf::ConversionStatus status = whole.result.status;
        tnefuzz::failIf(status == tnefrtf::ConversionStatus::kInputFailed ||
                            status == tnefrtf::ConversionStatus::kOutputFailed,
                        "a status no input can cause");
        tnefuzz::failIf(pieces.bytes != whole.bytes || pieces.result.status != status ||
                            pieces.result.encapsulation != whole.result.encapsulation,
                        "the output depends on the chunks");
        tnefuzz::failIf(!validUtf8(whole.bytes), "output that is not UTF-8");
        bool ownHtml = form == tnefrtf::OutputForm::kHtml &&
                       whole.result.encapsulation != tnefrtf::Encapsulation::kHtml;
        tnefuzz::failIf(ownHtml && !onlyOurMarkup(whole.bytes), "markup from the document's text");
    }
    return 0;
}
