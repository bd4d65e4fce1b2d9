// Where the pieces of an unwrapped TNEF part wait until the message is
// written: one scratch file, each body and attachment a slice of it that
// the module wrote in blocks and GMime reads back as a stream. Nothing of
// an attachment is held in memory, and one descriptor serves them all.
#pragma once

#include <gmime/gmime.h>

#include <cstdint>
#include <string>

#include "client/tnef_client.h"
#include "mail/gobject_ref.h"

namespace tnefmail {

struct Slice {
    int64_t begin = 0;
    int64_t end = 0;
    int64_t size() const { return end - begin; }
};

class PayloadStore {
public:
    PayloadStore() = default;
    ~PayloadStore();
    PayloadStore(const PayloadStore&) = delete;
    PayloadStore& operator=(const PayloadStore&) = delete;

    // Creates the scratch file; false with the reason in `error`.
    bool open(std::string* error);

    // Extracts subfile `index` of `session` into a new slice.
    tnefclient::ExtractOutcome extract(tnefclient::Session& session, int32_t index,
                                       const tnefclient::ExtractSettings& settings, Slice* slice);
    // Appends bytes as a new slice; false when they can't be written.
    bool append(const std::string& bytes, Slice* slice);

    // The slice as a GMime stream, read in large blocks.
    GRef<GMimeStream> stream(const Slice& slice) const;
    // Up to `count` bytes from the slice's start.
    std::string head(const Slice& slice, size_t count) const;

private:
    int fd_ = -1;  // the store's slices must not outlive it
    int64_t end_ = 0;
};

}  // namespace tnefmail
