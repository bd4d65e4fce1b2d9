// Readable bodies: the message's body as text or HTML in UTF-8, whatever
// form the message stores it in. Most messages carry their body only as
// compressed RTF, which the module hands out as it is; here the body is
// chosen and made readable with the RTF readers of rtf/:
//
//   text: the text body; else text made from a stored HTML body (through
//         the HtmlToTextFactory given, see client/html_text/html_text.h);
//         else text from the RTF body (for RTF that encapsulates HTML, the
//         HTML made text by the same factory, so that both routes agree).
//   HTML: a stored HTML body, as stored; else the HTML the RTF body
//         encapsulates, or HTML made from it; else the text body, escaped,
//         in <pre>.
//   auto: HTML when the message stores HTML or RTF that encapsulates HTML,
//         else text.
//
// The summary header, when asked for, keeps the form of the output: the
// module's own where the module renders the body itself (a text body as
// text, a stored HTML body as HTML), else the same fields (From, Sent, To,
// Cc, Bcc, Subject, Importance, Attachments) rendered here, in text or as
// a small HTML document of its own with every value escaped.
//
// Safety: a stored HTML body, and the HTML an RTF body encapsulates, are
// the message's own HTML and pass as they are: treat them as untrusted.
// HTML made here (from native RTF, from the text body, the header) escapes
// every character of text it writes.
//
//     tnefclient::ReadableRequest request;
//     request.form = tnefclient::ReadableForm::kHtml;
//     request.htmlToText = tnefclient::libxmlHtmlToText;  // POSIX front ends
//     tnefrtf::StringSink html;
//     tnefclient::ReadableBody body =
//         tnefclient::writeReadableBody(session, session.messageIndex(), request, html);
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "client/tnef_client.h"
#include "rtf/converter.h"
#include "rtf/output_sink.h"

namespace tnefclient {

enum class ReadableForm { kAuto, kText, kHtml };

// What a readable body was made from.
enum class BodySource {
    kNone,     // the message stores no body (or none that gives the form asked)
    kText,     // the text body
    kHtml,     // the stored HTML body
    kRtfHtml,  // the RTF body, which encapsulates HTML
    kRtfText,  // the RTF body, which encapsulates text
    kRtf,      // the RTF body, RTF of its own
};
// "none", "text", "html", "rtf-html", "rtf-text", "rtf".
const char* bodySourceName(BodySource source);

// Text made from HTML, as it streams: HTML goes in by write() in pieces of
// any size, text comes out in UTF-8, CRLF line ends.
class HtmlTextConverter : public tnefrtf::OutputSink {
public:
    // The HTML has ended: the rest of the text is written. False when the
    // text's sink refused a write (at any point).
    virtual bool finish() = 0;
};

// Makes a converter that writes to `text`. `charset` names the charset of
// the HTML (a MIME name such as "windows-1252"), or is empty: then the
// document's own declaration holds.
using HtmlToTextFactory = std::unique_ptr<HtmlTextConverter> (*)(tnefrtf::OutputSink& text,
                                                                 std::string_view charset);

struct ReadableRequest {
    ReadableForm form = ReadableForm::kAuto;
    bool header = true;  // the summary header in front of the body
    // Text from HTML; null: a stored HTML body gives no text (kNone), and
    // RTF that encapsulates HTML gives the text an RTF reader shows.
    HtmlToTextFactory htmlToText = nullptr;
    // For HTML: a message with nothing but a text body gives it escaped in
    // <pre>; false: kNone.
    bool textAsHtml = true;
    // Readable text (not HTML) in this charset of the host's table instead
    // of UTF-8; 0 or kCharsetUtf8: UTF-8.
    CharsetId textCharset = kCharsetNone;
};

struct ReadableBody {
    // The module's status of the extraction that failed, or
    // kTnefOutputUnusable when the output refused a write; 0 otherwise.
    int32_t status = kTnefOk;
    ReadableForm form = ReadableForm::kText;  // what was written: kText or kHtml
    BodySource source = BodySource::kNone;
    // The HTML's charset: "utf-8" for HTML made here, the name of the
    // message's internet code page (PR_INTERNET_CPID) for a stored HTML
    // body; null for text, or when the code page is unknown.
    std::optional<std::string> htmlCharset;
    // How reading the RTF body went, when it was read.
    std::optional<tnefrtf::ConversionStatus> rtf;
};

// Writes the body of the message at `message` (a message subfile) to
// `output` as `request` asks. Nothing is held whole that the module does
// not hold: the body streams from the module through the readers.
ReadableBody writeReadableBody(Session& session, int32_t message, const ReadableRequest& request,
                               tnefrtf::OutputSink& output);

// The summary header of the message as rendered here: text lines with CRLF
// and an empty line after them, or (kHtml) a small HTML document in UTF-8.
// False when the output refused a write.
bool writeSummaryHeader(Session& session, int32_t message, ReadableForm form,
                        tnefrtf::OutputSink& output);

// The MIME name of a Windows code page that mail bodies are written in
// ("windows-1252", "iso-8859-2", "shift_jis", ...); null for one without.
std::optional<std::string> internetCharsetName(int64_t codePage);

}  // namespace tnefclient
