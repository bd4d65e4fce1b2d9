#include "client/output_sinks.h"

#include <unistd.h>

#include <cerrno>
#include <climits>

#include "client/tnef_client.h"
#include "rtf/code_pages.h"

namespace tnefclient {

bool SinkIo::doWrite(const void* buffer, uint32_t count) {
    if (failed_ || !sink_.write(std::string_view(static_cast<const char*>(buffer), count))) {
        failed_ = true;
        return false;
    }
    written_ += count;
    return true;
}

bool SinkIo::doSeek(int64_t offset, int32_t origin) {
    return (origin == kSeekSet && offset == written_) || (origin == kSeekEnd && offset == 0);
}

bool StdoutSink::write(std::string_view bytes) {
    while (!bytes.empty()) {
        ssize_t n = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        bytes.remove_prefix(static_cast<size_t>(n));
    }
    return true;
}

bool HeadSink::write(std::string_view bytes) {
    if (head_.size() < limit_) head_.append(bytes.substr(0, limit_ - head_.size()));
    total_ += bytes.size();
    return true;
}

void Utf8Sink::take(std::string_view bytes, bool last) {
    tnefrtf::BuiltinCodePageDecoder windows1252;
    std::string decoded;
    size_t at = 0;
    size_t run = 0;  // where the valid text not yet handed on starts
    while (at < bytes.size()) {
        bool cut = false;
        size_t length = utf8CharLength(bytes.substr(at), &cut);
        if (length > 0) {
            at += length;
            continue;
        }
        out_.append(bytes.substr(run, at - run));
        if (cut && !last) {
            held_.assign(bytes.substr(at));
            return;
        }
        decoded.clear();
        windows1252.decode(tnefrtf::kCodePageWindows1252, bytes.substr(at, 1), decoded);
        out_.append(decoded);
        run = ++at;
    }
    out_.append(bytes.substr(run));
}

bool Utf8Sink::write(std::string_view bytes) {
    if (!held_.empty()) {
        std::string joined = std::move(held_) + std::string(bytes);
        held_.clear();
        take(joined, false);
    } else {
        take(bytes, false);
    }
    return !out_.failed();
}

bool Utf8Sink::finish() {
    std::string rest = std::move(held_);
    held_.clear();
    take(rest, true);
    out_.flush();
    return !out_.failed();
}

bool HtmlEscapeSink::write(std::string_view bytes) {
    out_.appendEscaped(bytes);
    return !out_.failed();
}

bool HtmlEscapeSink::finish() {
    out_.flush();
    return !out_.failed();
}

bool CharsetSink::convert(std::string_view utf8) {
    if (utf8.empty()) return true;
    if (utf8.size() > INT32_MAX / 4 || host_ == nullptr || host_->hostCharsetToCharset == nullptr) {
        return false;
    }
    HostText source{utf8.data(), static_cast<int32_t>(utf8.size())};
    CharsetId saved = host_->currentCharset;
    host_->currentCharset = charset_;
    HostTextBuffer measure{nullptr, 0};
    bool converted = host_->hostCharsetToCharset(host_, kCharsetUtf8, &source, &measure, '?') != 0 &&
                     measure.length >= 0;
    if (converted) {
        buffer_.resize(static_cast<size_t>(measure.length));
        HostTextBuffer target{buffer_.data(), measure.length};
        converted = host_->hostCharsetToCharset(host_, kCharsetUtf8, &source, &target, '?') != 0 &&
                    target.length >= 0 && target.length <= measure.length;
        if (converted) buffer_.resize(static_cast<size_t>(target.length));
    }
    host_->currentCharset = saved;
    return converted && next_.write(buffer_);
}

bool CharsetSink::write(std::string_view bytes) {
    if (charset_ == kCharsetUtf8 || charset_ == kCharsetNone) return next_.write(bytes);
    std::string text = std::move(held_) + std::string(bytes);
    held_.clear();
    // Keep back a character the write cut, so that each conversion gets
    // whole characters.
    size_t whole = text.size();
    for (size_t back = 1; back <= 3 && back <= text.size(); ++back) {
        auto byte = static_cast<uint8_t>(text[text.size() - back]);
        if ((byte & 0xC0) == 0x80) continue;
        size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
        if (length > back) whole = text.size() - back;
        break;
    }
    held_ = text.substr(whole);
    return convert(std::string_view(text).substr(0, whole));
}

bool CharsetSink::finish() {
    std::string rest = std::move(held_);
    held_.clear();
    return charset_ == kCharsetUtf8 || charset_ == kCharsetNone || convert(rest);
}

}  // namespace tnefclient
