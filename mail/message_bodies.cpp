#include "mail/message_bodies.h"

#include "rtf/converter.h"
#include "rtf/host_code_pages.h"

namespace tnefmail {

using namespace tnefclient;

namespace {

constexpr uint32_t kTagInternetCodepage = 0x3FDE0003;

// The MIME charset name of a Windows code page an HTML body is stored in.
std::optional<std::string> charsetOfCodePage(int64_t page) {
    if (page == 65001) return "utf-8";
    if (page == 20127) return "us-ascii";
    if (page == 874 || (page >= 1250 && page <= 1258)) return "windows-" + std::to_string(page);
    if (page >= 28591 && page <= 28606) return "iso-8859-" + std::to_string(page - 28590);
    switch (page) {
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

// The message rendered as `choice` asks, without the summary header; the
// form that came, or nothing for an empty body.
std::optional<BodyForm> renderBody(Session& session, int32_t message, BodyChoice choice,
                                   std::string* body, std::string* problem) {
    ExtractSettings settings;
    settings.body = choice;
    settings.noHeader = true;
    settings.charset = choice == BodyChoice::kText ? kCharsetUtf8 : kCharsetNone;
    std::vector<uint8_t> bytes;
    ExtractOutcome outcome = session.extractToMemory(message, &bytes, settings);
    if (outcome.status != kTnefOk) {
        *problem = "the message body can't be read: " + statusText(outcome.status);
        return std::nullopt;
    }
    body->assign(bytes.begin(), bytes.end());
    if (body->empty()) return std::nullopt;
    return detectBodyForm(*body);
}

}  // namespace

bool readBodies(Session& session, int32_t message, MessageBodies* bodies, std::string* problem) {
    if (message < 0) return true;
    std::string first, second;
    std::optional<BodyForm> textFirst = renderBody(session, message, BodyChoice::kText, &first, problem);
    if (!problem->empty()) return false;
    std::optional<BodyForm> storedFirst =
        renderBody(session, message, BodyChoice::kHtml, &second, problem);
    if (!problem->empty()) return false;
    if (textFirst == BodyForm::kText) bodies->text = std::move(first);
    if (storedFirst == BodyForm::kHtml) {
        bodies->html = std::move(second);
        int32_t status = 0;
        std::vector<Element> page = session.properties(message, {kTagInternetCodepage}, &status);
        if (page.size() == 1 && page[0].hasValue && page[0].type == kElementInteger) {
            bodies->htmlCharset = charsetOfCodePage(page[0].number);
        }
    } else if (storedFirst == BodyForm::kRtf) {
        tnefrtf::HostCodePageDecoder codePages(session.host());
        tnefrtf::StringSink html;
        tnefrtf::convertRtf(second, tnefrtf::OutputForm::kHtml, html, &codePages);
        bodies->html = std::move(html.text);
        bodies->htmlCharset = "utf-8";
        if (!bodies->text) {
            tnefrtf::StringSink text;
            tnefrtf::convertRtf(second, tnefrtf::OutputForm::kText, text, &codePages);
            bodies->text = std::move(text.text);
        }
    }
    return true;
}

}  // namespace tnefmail
