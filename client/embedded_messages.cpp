// Embedded messages: an attachment with attach method 5 is extracted by the
// module as the message's own TNEF stream, which a session opens in turn.
#include <algorithm>
#include <iterator>

#include "client/tnef_client.h"

namespace tnefclient {

namespace {

constexpr uint32_t kTagAttachMethod = 0x37050003;
constexpr int64_t kAttachEmbeddedMessage = 5;
constexpr uint8_t kSignature[4] = {0x78, 0x9F, 0x3E, 0x22};  // 0x223E9F78, little-endian

}  // namespace

bool startsWithTnefSignature(std::string_view head) {
    return head.size() >= sizeof kSignature &&
           std::equal(std::begin(kSignature), std::end(kSignature), head.begin(),
                      [](uint8_t a, char b) { return a == static_cast<uint8_t>(b); });
}

bool Session::holdsEmbeddedMessage(int32_t index) {
    if (subfile(index).type != kSubfileAttachment) return false;
    int32_t status = 0;
    std::vector<Element> method = properties(index, {kTagAttachMethod}, &status);
    return method.size() == 1 && method[0].hasValue && method[0].type == kElementInteger &&
           method[0].number == kAttachEmbeddedMessage;
}

Opened Session::openEmbedded(Session& parent, int32_t index, std::string* error) {
    depth_ = parent.depth_ + 1;
    if (depth_ > kMaxNestingDepth) {
        *error = "nested deeper than " + std::to_string(kMaxNestingDepth) + " messages";
        return Opened::kUnreadable;
    }
    // The stream goes to a scratch file, not to memory: an embedded message
    // may carry large attachments of its own. The module closes its output
    // when done, and a scratch file is gone once closed, so the module
    // writes through a wrapper that keeps it open.
    auto scratch = std::make_unique<tnefhost::ScratchIo>();
    tnefhost::WrapperIo output(scratch->io());
    ExtractOutcome outcome = parent.extract(index, output.io());
    IoObject* io = scratch->io();
    if (outcome.status != kTnefOk || !scratch->isOpen() || io->seek(io, 0, kSeekSet) == 0) {
        *error = "can't be extracted: " + statusText(outcome.status);
        return Opened::kUnreadable;
    }
    io->size = output.io()->size;
    OpenOptions options;
    options.rootEntry = parent.rootEntry_;
    return start(std::move(scratch), true, options, "the embedded message", error);
}

}  // namespace tnefclient
