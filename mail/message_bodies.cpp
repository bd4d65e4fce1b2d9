#include "mail/message_bodies.h"

#include "client/html_text/html_text.h"
#include "client/readable_body.h"

namespace tnefmail {

using namespace tnefclient;

namespace {

// The body in `form`, without the summary header: nothing when the message
// has none that gives the form (a text body is not turned into HTML here).
bool readableBody(Session& session, int32_t message, ReadableForm form,
                  std::optional<std::string>* body, std::optional<std::string>* charset,
                  std::string* problem) {
    ReadableRequest request;
    request.form = form;
    request.header = false;
    request.htmlToText = libxmlHtmlToText;
    request.textAsHtml = false;
    tnefrtf::StringSink sink;
    ReadableBody written = writeReadableBody(session, message, request, sink);
    if (written.status != kTnefOk) {
        *problem = "the message body can't be read: " + statusText(written.status);
        return false;
    }
    if (written.source == BodySource::kNone || sink.text.empty()) return true;
    *body = std::move(sink.text);
    if (charset != nullptr) *charset = written.htmlCharset;
    return true;
}

}  // namespace

bool readBodies(Session& session, int32_t message, MessageBodies* bodies, std::string* problem) {
    if (message < 0) return true;
    return readableBody(session, message, ReadableForm::kText, &bodies->text, nullptr, problem) &&
           readableBody(session, message, ReadableForm::kHtml, &bodies->html, &bodies->htmlCharset,
                        problem);
}

}  // namespace tnefmail
