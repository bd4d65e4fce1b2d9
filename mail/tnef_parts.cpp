// Finding the TNEF parts of a message and decoding one into a scratch file.
#include <strings.h>
#include <unistd.h>

#include "client/tnef_client.h"
#include "mail/mail_input.h"
#include "mail/output_sink.h"
#include "mail/scratch_file.h"

namespace tnefmail {

namespace {

// Deeper MIME trees than this are not searched: no mail needs them, and a
// hostile one must not exhaust the stack.
constexpr int kMaxMimeDepth = 64;

std::string childPath(const std::string& path, int index) {
    return (path.empty() ? std::string() : path + ".") + std::to_string(index);
}

// The first bytes of the part's decoded content.
std::string decodedHead(GMimePart* part, size_t count) {
    GMimeDataWrapper* content = g_mime_part_get_content(part);
    if (content == nullptr) return {};
    GRef<GMimeStream> memory = GRef<GMimeStream>::adopt(g_mime_stream_mem_new());
    GRef<GMimeStream> raw = GRef<GMimeStream>::share(g_mime_data_wrapper_get_stream(content));
    GRef<GMimeStream> filtered = GRef<GMimeStream>::adopt(g_mime_stream_filter_new(raw.get()));
    GMimeContentEncoding encoding = g_mime_data_wrapper_get_encoding(content);
    if (encoding != GMIME_CONTENT_ENCODING_DEFAULT) {
        GRef<GMimeFilter> decoder = GRef<GMimeFilter>::adopt(g_mime_filter_basic_new(encoding, FALSE));
        g_mime_stream_filter_add(GMIME_STREAM_FILTER(filtered.get()), decoder.get());
    }
    g_mime_stream_reset(raw.get());
    std::string head(count, '\0');
    size_t got = 0;
    while (got < count) {
        ssize_t n = g_mime_stream_read(filtered.get(), head.data() + got, count - got);
        if (n <= 0) break;
        got += static_cast<size_t>(n);
    }
    g_mime_stream_reset(raw.get());
    head.resize(got);
    return head;
}

bool isTnefPart(GMimePart* part, const char* fileName) {
    GMimeContentType* type = g_mime_object_get_content_type(GMIME_OBJECT(part));
    if (type != nullptr && (g_mime_content_type_is_type(type, "application", "ms-tnef") ||
                            g_mime_content_type_is_type(type, "application", "vnd.ms-tnef"))) {
        return true;
    }
    if (fileName == nullptr ||
        (strcasecmp(fileName, "winmail.dat") != 0 && strcasecmp(fileName, "win.dat") != 0)) {
        return false;
    }
    return tnefclient::startsWithTnefSignature(decodedHead(part, 4));
}

struct Walk {
    const MessageInfo& info;
    size_t nextNumber;
    std::vector<TnefPart> found;

    void body(GMimeMessage* message, const std::string& path, int depth, bool signedOver) {
        GMimeObject* top = g_mime_message_get_mime_part(message);
        if (top == nullptr) return;
        std::string where = GMIME_IS_MULTIPART(top) ? path : childPath(path, 1);
        object(top, where, GMIME_OBJECT(message), message, depth, signedOver);
    }

    void object(GMimeObject* node, const std::string& path, GMimeObject* parent,
                GMimeMessage* owner, int depth, bool signedOver) {
        if (depth > kMaxMimeDepth) return;
        if (GMIME_IS_MULTIPART(node)) {
            GMimeMultipart* multipart = GMIME_MULTIPART(node);
            bool isSigned = signedOver || GMIME_IS_MULTIPART_SIGNED(node);
            for (int i = 0; i < g_mime_multipart_get_count(multipart); ++i) {
                object(g_mime_multipart_get_part(multipart, i), childPath(path, i + 1), node, owner,
                       depth + 1, isSigned);
            }
        } else if (GMIME_IS_MESSAGE_PART(node)) {
            GMimeMessage* inner = g_mime_message_part_get_message(GMIME_MESSAGE_PART(node));
            if (inner != nullptr) body(inner, path, depth + 1, signedOver);
        } else if (GMIME_IS_PART(node)) {
            GMimePart* part = GMIME_PART(node);
            const char* fileName = g_mime_part_get_filename(part);
            if (!isTnefPart(part, fileName)) return;
            TnefPart tnef;
            tnef.number = nextNumber++;
            tnef.message = info;
            tnef.mimePath = path;
            if (fileName != nullptr) tnef.fileName = fileName;
            GMimeContentType* type = g_mime_object_get_content_type(node);
            char* mime = type != nullptr ? g_mime_content_type_get_mime_type(type) : nullptr;
            tnef.contentType = mime != nullptr ? mime : "application/octet-stream";
            g_free(mime);
            tnef.part = part;
            tnef.parent = parent;
            tnef.owner = owner;
            tnef.signedOver = signedOver;
            found.push_back(std::move(tnef));
        }
    }
};

}  // namespace

std::vector<TnefPart> findTnefParts(GMimeMessage* message, const MessageInfo& info,
                                    size_t firstNumber) {
    Walk walk{info, firstNumber, {}};
    walk.body(message, "", 0, false);
    return std::move(walk.found);
}

std::unique_ptr<tnefhost::HostIo> decodePart(GMimePart* part, std::string* error) {
    int fd = makeScratchFile(error);
    if (fd < 0) return nullptr;
    GMimeDataWrapper* content = g_mime_part_get_content(part);
    OutputSink scratch(fd);
    if ((content != nullptr && !scratch.writeDecoded(content)) || ::lseek(fd, 0, SEEK_SET) != 0) {
        *error = "cannot decode the TNEF part into a scratch file" +
                 (scratch.failed() ? ": " + scratch.error() : std::string());
        ::close(fd);
        return nullptr;
    }
    return std::unique_ptr<tnefhost::HostIo>(tnefhost::FileIo::adopt(fd, tnefhost::FileIo::Mode::kRead));
}

}  // namespace tnefmail
