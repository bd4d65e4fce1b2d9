#include "mail/output_sink.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "mail/scratch_file.h"

// A GMime stream that hands what GMime writes to an OutputSink.
struct TnefMailSinkStream {
    GMimeStream parent;
    tnefmail::OutputSink* sink;
};
struct TnefMailSinkStreamClass {
    GMimeStreamClass parent_class;
};

G_DEFINE_TYPE(TnefMailSinkStream, tnef_mail_sink_stream, GMIME_TYPE_STREAM)

namespace {

TnefMailSinkStream* sinkStream(GMimeStream* stream) {
    return reinterpret_cast<TnefMailSinkStream*>(stream);
}

ssize_t sinkWrite(GMimeStream* stream, const char* bytes, size_t size) {
    if (!sinkStream(stream)->sink->write(bytes, size)) return -1;
    stream->position += static_cast<gint64>(size);
    return static_cast<ssize_t>(size);
}
ssize_t sinkRead(GMimeStream*, char*, size_t) { return -1; }
int sinkFlush(GMimeStream* stream) { return sinkStream(stream)->sink->flush() ? 0 : -1; }
int sinkClose(GMimeStream*) { return 0; }
gboolean sinkEos(GMimeStream*) { return FALSE; }
int sinkReset(GMimeStream*) { return -1; }
gint64 sinkSeek(GMimeStream*, gint64, GMimeSeekWhence) { return -1; }
gint64 sinkTell(GMimeStream* stream) { return stream->position; }
gint64 sinkLength(GMimeStream*) { return -1; }
GMimeStream* sinkSubstream(GMimeStream*, gint64, gint64) { return nullptr; }

}  // namespace

static void tnef_mail_sink_stream_class_init(TnefMailSinkStreamClass* klass) {
    GMimeStreamClass* stream = GMIME_STREAM_CLASS(klass);
    stream->read = sinkRead;
    stream->write = sinkWrite;
    stream->flush = sinkFlush;
    stream->close = sinkClose;
    stream->eos = sinkEos;
    stream->reset = sinkReset;
    stream->seek = sinkSeek;
    stream->tell = sinkTell;
    stream->length = sinkLength;
    stream->substream = sinkSubstream;
}

static void tnef_mail_sink_stream_init(TnefMailSinkStream* stream) { stream->sink = nullptr; }

namespace tnefmail {

namespace {
constexpr size_t kSinkBufferBytes = 256 * 1024;
}

OutputSink::OutputSink(int fd) : fd_(fd), buffer_(kSinkBufferBytes) {}

OutputSink::~OutputSink() = default;

void OutputSink::take(const char* bytes, size_t size) {
    bytes_ += static_cast<int64_t>(size);
    lineFeeds_ += std::count(bytes, bytes + size, '\n');
    if (size >= 2) {
        tail_[0] = bytes[size - 2];
        tail_[1] = bytes[size - 1];
    } else if (size == 1) {
        tail_[0] = tail_[1];
        tail_[1] = bytes[0];
    }
}

bool OutputSink::write(const char* bytes, size_t size) {
    if (failed_) return false;
    take(bytes, size);
    if (size > buffer_.size() - held_ && !flush()) return false;
    if (size >= buffer_.size()) {
        if (writeAll(fd_, bytes, size)) return true;
        failed_ = true;
        error_ = std::strerror(errno);
        return false;
    }
    std::memcpy(buffer_.data() + held_, bytes, size);
    held_ += size;
    return true;
}

bool OutputSink::flush() {
    if (failed_) return false;
    if (held_ > 0 && !writeAll(fd_, buffer_.data(), held_)) {
        failed_ = true;
        error_ = std::strerror(errno);
        return false;
    }
    held_ = 0;
    return true;
}

bool OutputSink::copyRange(int fd, int64_t begin, int64_t end) {
    std::vector<char> block(kSinkBufferBytes);
    while (begin < end) {
        size_t want = static_cast<size_t>(std::min<int64_t>(end - begin, block.size()));
        ssize_t n = ::pread(fd, block.data(), want, static_cast<off_t>(begin));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            failed_ = true;
            error_ = n == 0 ? "the input ended early" : std::strerror(errno);
            return false;
        }
        if (!write(block.data(), static_cast<size_t>(n))) return false;
        begin += n;
    }
    return true;
}

bool OutputSink::throughStream(const std::function<bool(GMimeStream*)>& write) {
    auto* stream = static_cast<TnefMailSinkStream*>(g_object_new(tnef_mail_sink_stream_get_type(), nullptr));
    g_mime_stream_construct(GMIME_STREAM(stream), 0, -1);
    stream->sink = this;
    bool written = write(GMIME_STREAM(stream));
    g_object_unref(stream);
    if (!written && !failed_) {
        failed_ = true;
        error_ = "the input could not be read";
    }
    return written && !failed_;
}

bool OutputSink::writeObject(GMimeObject* object) {
    return throughStream([object](GMimeStream* stream) {
        return g_mime_object_write_to_stream(object, nullptr, stream) >= 0;
    });
}

bool OutputSink::writeDecoded(GMimeDataWrapper* content) {
    return throughStream([content](GMimeStream* stream) {
        return g_mime_data_wrapper_write_to_stream(content, stream) >= 0;
    }) && flush();
}

int OutputSink::trailingLineFeeds() const {
    if (bytes_ == 0) return 0;
    if (tail_[1] != '\n') return 0;
    return bytes_ >= 2 && tail_[0] == '\n' ? 2 : 1;
}

bool OutputSink::endWithLineFeeds(int count) {
    if (bytes_ == 0) return true;
    for (int have = trailingLineFeeds(); have < count; ++have) {
        if (!write("\n", 1)) return false;
    }
    return true;
}

}  // namespace tnefmail
