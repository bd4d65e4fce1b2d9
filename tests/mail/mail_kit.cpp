#include "tests/mail/mail_kit.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

#include "mail/mail_library.h"

namespace tneftest {

namespace {

// GMime for the whole test program: it can't be started again once stopped.
class GMimeEnvironment : public ::testing::Environment {
    std::unique_ptr<tnefmail::MailLibrary> library_;

public:
    void SetUp() override { library_ = std::make_unique<tnefmail::MailLibrary>(); }
    void TearDown() override { library_.reset(); }
};
const auto* const kGMime = ::testing::AddGlobalTestEnvironment(new GMimeEnvironment);

std::string decoded(GMimePart* part) {
    GRef<GMimeStream> memory = GRef<GMimeStream>::adopt(g_mime_stream_mem_new());
    g_mime_data_wrapper_write_to_stream(g_mime_part_get_content(part), memory.get());
    GByteArray* bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(memory.get()));
    return std::string(reinterpret_cast<char*>(bytes->data), bytes->len);
}

void collect(GMimeObject*, GMimeObject* part, gpointer data) {
    auto* found = static_cast<ReadBack*>(data);
    if (GMIME_IS_MESSAGE_PART(part)) {
        GMimeMessage* inner = g_mime_message_part_get_message(GMIME_MESSAGE_PART(part));
        g_mime_message_foreach(inner, collect, data);
        return;
    }
    if (g_mime_content_type_is_type(g_mime_object_get_content_type(part), "multipart", "related")) {
        found->related = true;
    }
    if (!GMIME_IS_PART(part)) return;
    const char* name = g_mime_part_get_filename(GMIME_PART(part));
    if (name != nullptr) found->attachments[name] = decoded(GMIME_PART(part));
}

}  // namespace

GRef<GMimeObject> bytesPart(const std::string& type, const Bytes& bytes,
                            GMimeContentEncoding encoding, const char* name) {
    GMimeContentType* contentType = g_mime_content_type_parse(nullptr, type.c_str());
    GMimePart* part = g_mime_part_new_with_type(g_mime_content_type_get_media_type(contentType),
                                                g_mime_content_type_get_media_subtype(contentType));
    g_object_unref(contentType);
    GRef<GMimeStream> content = GRef<GMimeStream>::adopt(
        g_mime_stream_mem_new_with_buffer(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    GRef<GMimeDataWrapper> wrapper = GRef<GMimeDataWrapper>::adopt(
        g_mime_data_wrapper_new_with_stream(content.get(), GMIME_CONTENT_ENCODING_DEFAULT));
    g_mime_part_set_content(part, wrapper.get());
    g_mime_part_set_content_encoding(part, encoding);
    if (name != nullptr) g_mime_part_set_filename(part, name);
    return GRef<GMimeObject>::adopt(GMIME_OBJECT(part));
}

GRef<GMimeObject> tnefPart(const Bytes& tnef) {
    return bytesPart("application/ms-tnef", tnef, GMIME_CONTENT_ENCODING_BASE64, "winmail.dat");
}

GRef<GMimeObject> textPart(const std::string& text) {
    return bytesPart("text/plain", bytesOf(text), GMIME_CONTENT_ENCODING_7BIT);
}

GRef<GMimeObject> multipart(const char* subtype, const std::vector<GRef<GMimeObject>>& parts) {
    GMimeMultipart* multipart = g_mime_multipart_new_with_subtype(subtype);
    for (const auto& part : parts) g_mime_multipart_add(multipart, part.get());
    return GRef<GMimeObject>::adopt(GMIME_OBJECT(multipart));
}

GRef<GMimeObject> messagePart(GRef<GMimeObject> body) {
    GRef<GMimeMessage> message = GRef<GMimeMessage>::adopt(g_mime_message_new(TRUE));
    g_mime_message_set_subject(message.get(), "Forwarded", nullptr);
    g_mime_message_set_mime_part(message.get(), body.get());
    return GRef<GMimeObject>::adopt(
        GMIME_OBJECT(g_mime_message_part_new_with_message("rfc822", message.get())));
}

std::string messageBytes(GRef<GMimeObject> body, const std::string& id) {
    GRef<GMimeMessage> message = GRef<GMimeMessage>::adopt(g_mime_message_new(TRUE));
    GMimeObject* object = GMIME_OBJECT(message.get());
    g_mime_object_set_header(object, "From", "Ann <ann@example.com>", nullptr);
    g_mime_message_set_subject(message.get(), "Figures", nullptr);
    g_mime_message_set_message_id(message.get(), id.c_str());
    g_mime_object_set_header(object, "X-MS-TNEF-Correlator", "<00000000@example.com>", nullptr);
    g_mime_message_set_mime_part(message.get(), body.get());
    gchar* text = g_mime_object_to_string(object, nullptr);
    std::string bytes(text);
    g_free(text);
    return bytes;
}

std::string mboxEntry(const std::string& sender, const std::string& message) {
    return "From " + sender + " Mon Jan  1 00:00:00 2024\n" + message + "\n";
}

void makeMaildir(const std::string& path) {
    for (const char* sub : {"cur", "new", "tmp"}) std::filesystem::create_directories(path + "/" + sub);
}

ReadBack readBack(const std::string& messageBytes) {
    GRef<GMimeStream> stream = GRef<GMimeStream>::adopt(
        g_mime_stream_mem_new_with_buffer(messageBytes.data(), messageBytes.size()));
    GRef<GMimeParser> parser = GRef<GMimeParser>::adopt(g_mime_parser_new_with_stream(stream.get()));
    GRef<GMimeMessage> message =
        GRef<GMimeMessage>::adopt(g_mime_parser_construct_message(parser.get(), nullptr));
    ReadBack found;
    if (!message) return found;
    g_mime_message_foreach(message.get(), collect, &found);
    return found;
}

}  // namespace tneftest
