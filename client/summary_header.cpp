// The summary header as the client renders it, for bodies the module does
// not render itself: the fields of the module's headers, in text or in HTML.
#include <string>
#include <utility>
#include <vector>

#include "client/readable_body.h"

namespace tnefclient {

namespace {

struct HeaderLine {
    const char* label;
    std::string value;
};

// From, Sent, To, Cc, Bcc, Subject, Importance and Attachments, those that
// have a value, in that order.
std::vector<HeaderLine> headerLines(Session& session, int32_t message) {
    static constexpr const char* kTextFields[] = {"From", "Sent", "To", "Cc", "Bcc", "Subject"};
    HostContext* host = session.host();
    CharsetId charset = session.messageCharset();
    int32_t status = 0;
    std::vector<Element> elements = session.summary(message, &status);
    std::vector<HeaderLine> lines;
    std::string importance = "Normal";
    for (const char* field : kTextFields) {
        for (const Element& element : elements) {
            if (!element.name || *element.name != field || !elementHasValue(element)) continue;
            std::optional<std::string> value;
            if (element.type == kElementTime && element.bytes.size() >= 8) {
                value = fileTimeToDateText(element.bytes.data());
            } else if (element.type != kElementTime) {
                value = elementString(host, element, charset);
            }
            if (value && !value->empty()) lines.push_back({field, std::move(*value)});
        }
    }
    for (const Element& element : elements) {
        if (element.name && *element.name == "Priority" && element.hasValue &&
            element.type == kElementInteger) {
            importance = importanceWord(element.number);
        }
    }
    lines.push_back({"Importance", importance});
    std::string names;
    for (int32_t child : session.subfile(message).children) {
        SubfileEntry attachment = session.subfile(child);
        if (!attachment.name || attachment.name->empty()) continue;
        if (!names.empty()) names += "; ";
        names += eightBitToUtf8(host, *attachment.name, charset);
    }
    if (!names.empty()) lines.push_back({"Attachments", std::move(names)});
    return lines;
}

constexpr const char* kHtmlHead =
    "<html>\r\n<head><meta http-equiv=\"content-type\" content=\"text/html; charset=utf-8\" />"
    "</head>\r\n<body>\r\n<p><font face=\"Arial Unicode MS\" size=2>\r\n";
constexpr const char* kHtmlEnd = "</font></p>\r\n</body>\r\n</html>\r\n";

}  // namespace

bool writeSummaryHeader(Session& session, int32_t message, ReadableForm form,
                        tnefrtf::OutputSink& output) {
    tnefrtf::OutputBuffer out(output);
    bool html = form == ReadableForm::kHtml;
    if (html) out.append(kHtmlHead);
    for (const HeaderLine& line : headerLines(session, message)) {
        if (html) {
            out.append("<b>");
            out.append(line.label);
            out.append(": </b>");
            out.appendEscaped(line.value);
            out.append("<br>\r\n");
        } else {
            out.append(line.label);
            out.append(": ");
            out.append(line.value);
            out.append("\r\n");
        }
    }
    out.append(html ? kHtmlEnd : "\r\n");
    out.flush();
    return !out.failed();
}

}  // namespace tnefclient
