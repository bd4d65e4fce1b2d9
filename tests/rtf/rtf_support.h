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

// Converts `rtf` handed over in chunks of `chunk` bytes (0: at once).
inline Converted convert(std::string_view rtf, tnefrtf::OutputForm form, size_t chunk = 0) {
    static tnefhost::PosixHost host;
    tnefrtf::HostCodePageDecoder codePages(host.context());
    tnefrtf::StringSink sink;
    tnefrtf::RtfConverter converter(form, sink, &codePages);
    if (chunk == 0) chunk = rtf.size() + 1;
    for (size_t at = 0; at < rtf.size(); at += chunk) converter.write(rtf.substr(at, chunk));
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
