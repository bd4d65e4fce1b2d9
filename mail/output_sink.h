// Where unwrapped mail goes: a descriptor written in blocks, whether bytes
// are copied from the input as they stand or GMime serialises a message.
// It remembers how its output ends (an mbox needs a blank line before each
// "From " line) and counts bytes and line feeds (a maildir file name may
// carry both), and the first failure with its reason.
#pragma once

#include <gmime/gmime.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tnefmail {

class OutputSink {
public:
    explicit OutputSink(int fd);
    ~OutputSink();
    OutputSink(const OutputSink&) = delete;
    OutputSink& operator=(const OutputSink&) = delete;

    bool write(const char* bytes, size_t size);
    // Copies [begin, end) of the file `fd`.
    bool copyRange(int fd, int64_t begin, int64_t end);
    // The object as GMime writes it.
    bool writeObject(GMimeObject* object);
    // A part's content, decoded.
    bool writeDecoded(GMimeDataWrapper* content);
    // Adds line feeds until the output ends in `count` of them (an empty
    // output is left empty).
    bool endWithLineFeeds(int count);
    // Hands buffered bytes to the descriptor.
    bool flush();

    int64_t bytes() const { return bytes_; }
    int64_t lineFeeds() const { return lineFeeds_; }
    bool failed() const { return failed_; }
    const std::string& error() const { return error_; }

private:
    void take(const char* bytes, size_t size);
    // Hands GMime a stream into this sink for `write`; false when it or the
    // sink failed.
    bool throughStream(const std::function<bool(GMimeStream*)>& write);
    int trailingLineFeeds() const;

    int fd_;
    std::vector<char> buffer_;
    size_t held_ = 0;
    int64_t bytes_ = 0;
    int64_t lineFeeds_ = 0;
    char tail_[2] = {0, 0};
    bool failed_ = false;
    std::string error_;
};

}  // namespace tnefmail
