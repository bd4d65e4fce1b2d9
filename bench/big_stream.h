// Large TNEF streams for the benches, written straight to a file. The
// headers and the small records come from the test kit's TnefWriter; the
// data record of the large attachment is streamed in blocks, so a stream of
// any size needs no more memory than one block.
#pragma once

#include <cstdint>
#include <string>

namespace tnefbench {

struct BigStreamPlan {
    // Size of the whole file. The first attachment takes what the headers and
    // the other attachments leave.
    uint64_t fileBytes = 0;
    // Attachments in the stream; the second and later ones are small.
    int attachments = 3;
    uint32_t smallAttachmentBytes = 64 * 1024;
    // The large data as a hole in the file: no disk space, reads as zeros.
    // Good for opening and listing, which never read it.
    bool sparse = false;
};

// Where things ended up.
struct BigStreamLayout {
    uint64_t fileBytes = 0;
    int64_t largeDataOffset = 0;  // input position of the large attachment's data
    uint32_t largeDataBytes = 0;
    int subfiles = 0;  // the message and its attachments
};

// The largest file a plan may ask for: the large attachment's record length
// must stay a positive 32-bit count.
constexpr uint64_t kMaxBigStreamBytes = 0x7FFF0000ull;

// The fixed bytes a plan of `attachments` attachments needs beside the large
// data; a plan must ask for more than this.
uint64_t bigStreamOverhead(int attachments, uint32_t smallAttachmentBytes);

// Writes the stream to `path` (replacing it). False with `error` set when
// the plan can't be laid out or the file can't be written.
bool writeBigStream(const std::string& path, const BigStreamPlan& plan, BigStreamLayout* layout,
                    std::string* error);

// Parses "123", "64K", "512M", "1G" (binary multiples). False when malformed.
bool parseByteSize(const std::string& text, uint64_t* bytes);

}  // namespace tnefbench
