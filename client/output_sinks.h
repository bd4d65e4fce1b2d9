// Where rendered messages and readable bodies go. The module writes to an
// IoObject, the RTF readers and the HTML-to-text conversion to an
// OutputSink (rtf/output_sink.h); these pieces join the two and do the small
// jobs on the way: standard output, UTF-8 made sure of, HTML escaping, text
// converted to another charset.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/io_objects.h"
#include "reader/host.h"
#include "rtf/output_sink.h"

namespace tnefclient {

// An output IoObject that hands what is written to a sink. Positions are
// counted, never applied: the module seeks its output to the start before
// writing and to the end after, and only those seeks to where the output
// already stands succeed. Opening and closing do nothing.
class SinkIo : public tnefhost::HostIo {
public:
    explicit SinkIo(tnefrtf::OutputSink& sink) : sink_(sink) {}
    int64_t written() const { return written_; }
    bool failed() const { return failed_; }  // the sink refused a write

protected:
    bool doOpen() override { return true; }
    int32_t doRead(void*, uint32_t) override { return 0; }
    bool doWrite(const void* buffer, uint32_t count) override;
    bool doSeek(int64_t offset, int32_t origin) override;
    int64_t doTell() override { return written_; }
    bool doClose() override { return true; }

private:
    tnefrtf::OutputSink& sink_;
    int64_t written_ = 0;
    bool failed_ = false;
};

// Standard output, written straight through.
class StdoutSink final : public tnefrtf::OutputSink {
public:
    bool write(std::string_view bytes) override;
};

// An IoObject over standard output.
class StdoutIo : public SinkIo {
public:
    StdoutIo() : SinkIo(stdout_) {}

private:
    StdoutSink stdout_;
};

// The first `limit` bytes of what is written; the rest is counted only.
class HeadSink final : public tnefrtf::OutputSink {
public:
    explicit HeadSink(size_t limit) : limit_(limit) {}
    bool write(std::string_view bytes) override;
    const std::string& head() const { return head_; }
    uint64_t total() const { return total_; }

private:
    size_t limit_;
    std::string head_;
    uint64_t total_ = 0;
};

// Text that should be UTF-8 made sure to be: valid UTF-8 passes as it is,
// each byte that is not part of a valid character is read as windows-1252.
// A character cut between two writes is held until the next.
class Utf8Sink final : public tnefrtf::OutputSink {
public:
    explicit Utf8Sink(tnefrtf::OutputSink& next) : out_(next) {}
    bool write(std::string_view bytes) override;
    // The input ends: a cut character left over is read byte by byte.
    bool finish();

private:
    void take(std::string_view bytes, bool last);

    tnefrtf::OutputBuffer out_;
    std::string held_;
};

// Text written into HTML: & < > " ' as character references.
class HtmlEscapeSink final : public tnefrtf::OutputSink {
public:
    explicit HtmlEscapeSink(tnefrtf::OutputSink& next) : out_(next) {}
    bool write(std::string_view bytes) override;
    bool finish();

private:
    tnefrtf::OutputBuffer out_;
};

// UTF-8 converted to another charset of the host's table through the
// host's conversion service (a character the charset lacks becomes '?').
// UTF-8 itself passes unchanged.
class CharsetSink final : public tnefrtf::OutputSink {
public:
    CharsetSink(tnefrtf::OutputSink& next, HostContext* host, CharsetId charset)
        : next_(next), host_(host), charset_(charset) {}
    bool write(std::string_view bytes) override;
    bool finish();

private:
    bool convert(std::string_view utf8);

    tnefrtf::OutputSink& next_;
    HostContext* host_;
    CharsetId charset_;
    std::string held_;  // a character cut between two writes
    std::string buffer_;
};

}  // namespace tnefclient
