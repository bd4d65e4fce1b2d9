#include "mail/file_stream.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

struct TnefMailFileStream {
    GMimeStream parent;
    int fd;
    char* block;        // the read-ahead block, or null
    gint64 blockStart;  // file offset of block[0]
    size_t held;        // bytes in the block
};
struct TnefMailFileStreamClass {
    GMimeStreamClass parent_class;
};

G_DEFINE_TYPE(TnefMailFileStream, tnef_mail_file_stream, GMIME_TYPE_STREAM)

namespace {

constexpr size_t kBlockBytes = 128 * 1024;

TnefMailFileStream* fileStream(GMimeStream* stream) {
    return reinterpret_cast<TnefMailFileStream*>(stream);
}

void dropBlock(TnefMailFileStream* file) {
    g_free(file->block);
    file->block = nullptr;
    file->held = 0;
}

// Fills the block from the stream's position; false on a failed read.
bool refill(GMimeStream* stream) {
    TnefMailFileStream* file = fileStream(stream);
    if (file->block == nullptr) file->block = static_cast<char*>(g_malloc(kBlockBytes));
    auto want = static_cast<size_t>(std::min<gint64>(kBlockBytes, stream->bound_end - stream->position));
    ssize_t got;
    do {
        got = ::pread(file->fd, file->block, want, static_cast<off_t>(stream->position));
    } while (got < 0 && errno == EINTR);
    file->blockStart = stream->position;
    file->held = got > 0 ? static_cast<size_t>(got) : 0;
    return got >= 0;
}

ssize_t fileRead(GMimeStream* stream, char* buffer, size_t length) {
    TnefMailFileStream* file = fileStream(stream);
    if (stream->position >= stream->bound_end) return 0;
    gint64 offset = stream->position - file->blockStart;
    if (file->block == nullptr || offset < 0 || offset >= static_cast<gint64>(file->held)) {
        if (!refill(stream)) return -1;
        offset = 0;
        if (file->held == 0) return 0;  // the file is shorter than the range
    }
    size_t n = std::min(length, file->held - static_cast<size_t>(offset));
    std::memcpy(buffer, file->block + offset, n);
    stream->position += static_cast<gint64>(n);
    if (stream->position >= stream->bound_end) dropBlock(file);
    return static_cast<ssize_t>(n);
}

ssize_t fileWrite(GMimeStream*, const char*, size_t) { return -1; }
int fileFlush(GMimeStream*) { return 0; }
int fileClose(GMimeStream* stream) {
    dropBlock(fileStream(stream));
    return 0;
}
gboolean fileEos(GMimeStream* stream) { return stream->position >= stream->bound_end; }
int fileReset(GMimeStream* stream) {
    stream->position = stream->bound_start;
    return 0;
}
gint64 fileSeek(GMimeStream* stream, gint64 offset, GMimeSeekWhence whence) {
    gint64 base = whence == GMIME_STREAM_SEEK_SET ? 0
                  : whence == GMIME_STREAM_SEEK_CUR ? stream->position
                                                    : stream->bound_end;
    gint64 target = base + offset;
    if (target < stream->bound_start || target > stream->bound_end) return -1;
    stream->position = target;
    return target;
}
gint64 fileTell(GMimeStream* stream) { return stream->position; }
gint64 fileLength(GMimeStream* stream) { return stream->bound_end - stream->bound_start; }
GMimeStream* fileSubstream(GMimeStream* stream, gint64 start, gint64 end) {
    if (end < 0 || end > stream->bound_end) end = stream->bound_end;
    return tnefmail::fileRangeStream(fileStream(stream)->fd, start, end).release();
}

}  // namespace

static void tnef_mail_file_stream_finalize(GObject* object) {
    dropBlock(reinterpret_cast<TnefMailFileStream*>(object));
    G_OBJECT_CLASS(tnef_mail_file_stream_parent_class)->finalize(object);
}

static void tnef_mail_file_stream_class_init(TnefMailFileStreamClass* klass) {
    G_OBJECT_CLASS(klass)->finalize = tnef_mail_file_stream_finalize;
    GMimeStreamClass* stream = GMIME_STREAM_CLASS(klass);
    stream->read = fileRead;
    stream->write = fileWrite;
    stream->flush = fileFlush;
    stream->close = fileClose;
    stream->eos = fileEos;
    stream->reset = fileReset;
    stream->seek = fileSeek;
    stream->tell = fileTell;
    stream->length = fileLength;
    stream->substream = fileSubstream;
}

static void tnef_mail_file_stream_init(TnefMailFileStream* stream) {
    stream->fd = -1;
    stream->block = nullptr;
    stream->blockStart = 0;
    stream->held = 0;
}

namespace tnefmail {

GRef<GMimeStream> fileRangeStream(int fd, int64_t start, int64_t end) {
    auto* file = static_cast<TnefMailFileStream*>(g_object_new(tnef_mail_file_stream_get_type(), nullptr));
    file->fd = fd;
    g_mime_stream_construct(GMIME_STREAM(file), start, std::max(start, end));
    return GRef<GMimeStream>::adopt(GMIME_STREAM(file));
}

}  // namespace tnefmail
