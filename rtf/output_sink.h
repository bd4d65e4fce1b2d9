// Where converted text goes: any OutputSink (a string, an I/O object of the
// host), written to in large pieces through an OutputBuffer.
#pragma once

#include <string>
#include <string_view>

namespace tnefrtf {

class OutputSink {
public:
    virtual ~OutputSink() = default;
    // False when the bytes could not be written; nothing more is written then.
    virtual bool write(std::string_view bytes) = 0;
};

class StringSink final : public OutputSink {
public:
    bool write(std::string_view bytes) override {
        text.append(bytes);
        return true;
    }
    std::string text;
};

// Collects small writes and hands them on in pieces of about 64 KiB.
class OutputBuffer {
public:
    explicit OutputBuffer(OutputSink& sink);

    void append(std::string_view bytes) {
        buffer_.append(bytes);
        if (buffer_.size() >= kFlushSize) flush();
    }
    void append(char c) {
        buffer_ += c;
        if (buffer_.size() >= kFlushSize) flush();
    }
    // Text made safe inside HTML: & < > " ' as character references.
    void appendEscaped(std::string_view text);

    void flush();
    bool failed() const { return failed_; }

private:
    static constexpr size_t kFlushSize = 64 * 1024;
    OutputSink& sink_;
    std::string buffer_;
    bool failed_ = false;
};

}  // namespace tnefrtf
