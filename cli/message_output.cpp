#include "cli/message_output.h"

#include "client/html_text/html_text.h"
#include "client/readable_body.h"
#include "rtf/io_object_adapters.h"

namespace tnefcli {

using namespace tnefclient;

MessageWritten writeMessage(Session& session, int32_t index, const MessageOptions& options,
                            IoObject* output) {
    MessageWritten written;
    if (!options.readable()) {
        ExtractSettings settings;
        settings.body = options.body;
        settings.noHeader = options.noHeader;
        settings.charset = options.charset;
        written.status = session.extract(index, output, settings).status;
        return written;
    }
    if (output->open == nullptr || output->open(output) == 0) {
        written.status = kTnefOutputUnusable;
        return written;
    }
    ReadableRequest request;
    request.form = options.body == BodyChoice::kText   ? ReadableForm::kText
                   : options.body == BodyChoice::kHtml ? ReadableForm::kHtml
                                                       : ReadableForm::kAuto;
    request.header = !options.noHeader;
    request.htmlToText = libxmlHtmlToText;
    request.textCharset = options.charset;
    tnefrtf::IoObjectSink sink(output);
    ReadableBody body = writeReadableBody(session, index, request, sink);
    written.status = body.status;
    written.form = body.form == ReadableForm::kHtml ? BodyForm::kHtml : BodyForm::kText;
    written.source = bodySourceName(body.source);
    if (body.rtf == tnefrtf::ConversionStatus::kTruncated ||
        body.rtf == tnefrtf::ConversionStatus::kInputFailed) {
        written.warning = std::string("the message's RTF body is damaged (") +
                          tnefrtf::conversionStatusText(*body.rtf) + "); what was read is written";
    }
    return written;
}

}  // namespace tnefcli
