#include "mail/mime_parts.h"

#include <cstdio>

namespace tnefmail {

namespace {

bool hasFromLine(const std::string& text) {
    for (size_t at = 0; at < text.size(); at = text.find('\n', at) + 1) {
        size_t i = at;
        while (i < text.size() && text[i] == '>') ++i;
        if (text.compare(i, 5, "From ") == 0) return true;
        if (text.find('\n', at) == std::string::npos) break;
    }
    return false;
}

void setContent(GMimePart* part, GRef<GMimeStream> content, GMimeContentEncoding encoding) {
    GRef<GMimeDataWrapper> wrapper = GRef<GMimeDataWrapper>::adopt(
        g_mime_data_wrapper_new_with_stream(content.get(), GMIME_CONTENT_ENCODING_DEFAULT));
    g_mime_part_set_content(part, wrapper.get());
    g_mime_part_set_content_encoding(part, encoding);
}

bool isAscii(const std::string& text) {
    for (char c : text) {
        if (static_cast<unsigned char>(c) >= 0x80) return false;
    }
    return true;
}

void markUtf8(GMimeParamList* list, const char* name) {
    GMimeParam* param = list != nullptr ? g_mime_param_list_get_parameter(list, name) : nullptr;
    if (param != nullptr) g_mime_param_set_charset(param, "utf-8");
}

// "2009-05-04T10:20:30Z" as a date for the Date header.
GDateTime* isoDate(const std::string& iso) {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    if (std::sscanf(iso.c_str(), "%d-%d-%dT%d:%d:%dZ", &year, &month, &day, &hour, &minute,
                    &second) != 6) {
        return nullptr;
    }
    return g_date_time_new_utc(year, month, day, hour, minute, second);
}

}  // namespace

GRef<GMimeObject> multipartOf(const char* subtype, const std::vector<GRef<GMimeObject>>& parts) {
    GMimeMultipart* multipart = g_mime_multipart_new_with_subtype(subtype);
    for (const GRef<GMimeObject>& part : parts) g_mime_multipart_add(multipart, part.get());
    if (std::string(subtype) == "related") {
        g_mime_object_set_content_type_parameter(GMIME_OBJECT(multipart), "type", "text/html");
    }
    return GRef<GMimeObject>::adopt(GMIME_OBJECT(multipart));
}

GRef<GMimeObject> bodyPart(const char* subtype, const std::optional<std::string>& charset,
                           GRef<GMimeStream> content, const std::string& text) {
    GMimePart* part = g_mime_part_new_with_type("text", subtype);
    if (charset) g_mime_object_set_content_type_parameter(GMIME_OBJECT(part), "charset", charset->c_str());
    setContent(part, std::move(content),
               hasFromLine(text) ? GMIME_CONTENT_ENCODING_BASE64 : GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE);
    return GRef<GMimeObject>::adopt(GMIME_OBJECT(part));
}

GRef<GMimeObject> attachmentPart(const std::string& type, const std::string& name,
                                 GRef<GMimeStream> content) {
    size_t slash = type.find('/');
    std::string major = type.substr(0, slash), minor = type.substr(slash + 1);
    GMimePart* part = g_mime_part_new_with_type(major.c_str(), minor.c_str());
    setContent(part, std::move(content), GMIME_CONTENT_ENCODING_BASE64);
    setFileName(GMIME_OBJECT(part), name);
    return GRef<GMimeObject>::adopt(GMIME_OBJECT(part));
}

GRef<GMimeObject> linkPart(const std::string& path) {
    GMimePart* part = g_mime_part_new_with_type("message", "external-body");
    GMimeObject* object = GMIME_OBJECT(part);
    g_mime_object_set_content_type_parameter(object, "access-type", "local-file");
    g_mime_object_set_content_type_parameter(object, "name", path.c_str());
    if (!isAscii(path)) markUtf8(g_mime_content_type_get_parameters(g_mime_object_get_content_type(object)), "name");
    GRef<GMimeStream> header = GRef<GMimeStream>::adopt(g_mime_stream_mem_new());
    g_mime_stream_write_string(header.get(), "Content-Type: application/octet-stream\n\n");
    g_mime_stream_reset(header.get());
    setContent(part, std::move(header), GMIME_CONTENT_ENCODING_7BIT);
    return GRef<GMimeObject>::adopt(object);
}

GRef<GMimeObject> messagePart(const tnefclient::SummaryText& summary, GRef<GMimeObject> content) {
    GRef<GMimeMessage> message = GRef<GMimeMessage>::adopt(g_mime_message_new(TRUE));
    GMimeObject* object = GMIME_OBJECT(message.get());
    auto header = [object](const char* name, const std::optional<std::string>& value) {
        if (value && !value->empty()) g_mime_object_set_header(object, name, value->c_str(), "utf-8");
    };
    header("From", summary.from);
    header("To", summary.to);
    header("Cc", summary.cc);
    header("Bcc", summary.bcc);
    if (summary.subject) g_mime_message_set_subject(message.get(), summary.subject->c_str(), "utf-8");
    if (GDateTime* date = summary.sent ? isoDate(*summary.sent) : nullptr) {
        g_mime_message_set_date(message.get(), date);
        g_date_time_unref(date);
    }
    if (!content) {
        GMimePart* empty = g_mime_part_new_with_type("text", "plain");
        content = GRef<GMimeObject>::adopt(GMIME_OBJECT(empty));
    }
    g_mime_message_set_mime_part(message.get(), content.get());
    return GRef<GMimeObject>::adopt(
        GMIME_OBJECT(g_mime_message_part_new_with_message("rfc822", message.get())));
}

void setFileName(GMimeObject* object, const std::string& name) {
    g_mime_object_set_disposition(object, "attachment");
    g_mime_object_set_content_disposition_parameter(object, "filename", name.c_str());
    g_mime_object_set_content_type_parameter(object, "name", name.c_str());
    if (isAscii(name)) return;
    markUtf8(g_mime_content_disposition_get_parameters(g_mime_object_get_content_disposition(object)),
             "filename");
    markUtf8(g_mime_content_type_get_parameters(g_mime_object_get_content_type(object)), "name");
}

}  // namespace tnefmail
