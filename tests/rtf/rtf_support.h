// Converting RTF typed in a test, with the code pages of the real host.
#pragma once

#include <string>
#include <string_view>

#include "host/posix_host.h"
#include "rtf/converter.h"
#include "rtf/host_code_pages.h"

namespace rtftest {

struct Converted {
    std::string output;
    tnefrtf::ConversionResult result;
};

inline Converted convert(std::string_view rtf, tnefrtf::OutputForm form) {
    static tnefhost::PosixHost host;
    tnefrtf::HostCodePageDecoder codePages(host.context());
    tnefrtf::StringSink sink;
    tnefrtf::RtfConverter converter(form, sink, &codePages);
    converter.write(rtf);
    tnefrtf::ConversionResult result = converter.finish();
    return {sink.text, result};
}

inline std::string text(std::string_view rtf) { return convert(rtf, tnefrtf::OutputForm::kText).output; }

// The HTML of a native document between <body> and </body>.
inline std::string htmlBody(std::string_view rtf) {
    std::string html = convert(rtf, tnefrtf::OutputForm::kHtml).output;
    size_t start = html.find("<body>\r\n");
    size_t end = html.rfind("</body>");
    if (start == std::string::npos || end == std::string::npos || end < start) return "no body: " + html;
    return html.substr(start + 8, end - start - 8);
}

}  // namespace rtftest
