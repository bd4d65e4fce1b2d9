#include "bench/big_stream.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "tests/support/tnef_writer.h"

namespace tnefbench {

namespace {

using tneftest::Bytes;
using tneftest::Prop;
using tneftest::TnefWriter;

constexpr uint64_t kSent = 0x01DB3C5A7E2F1000ull;  // 2024-11-21 21:15:29 UTC
constexpr uint16_t kRecAttachData = 0x800F;
constexpr size_t kSignatureBytes = 6;               // signature and key
constexpr uint64_t kRecordFrame = 9 + 2;            // record header and checksum
constexpr size_t kBlockBytes = 1 << 20;

// The message records and the first attachment's records up to its data.
Bytes leadingRecords() {
    TnefWriter w;
    w.version().oemCodePage(1252).messageClass("IPM.Note");
    w.body("Hi,\r\n\r\nthe files are attached.\r\n\r\nAnn\r\n");
    w.recipients({{Prop::int32(tneftest::kTagRecipientType, 1),
                   Prop::string8(tneftest::kTagDisplayName8, "Bob Stone"),
                   Prop::string8(tneftest::kTagSmtpAddress8, "bob@example.com")},
                  {Prop::int32(tneftest::kTagRecipientType, 2),
                   Prop::string8(tneftest::kTagDisplayName8, "Carol White"),
                   Prop::string8(tneftest::kTagEmailAddress8, "carol@example.com")}});
    w.messageProps({Prop::string8(tneftest::kTagSubject8, "Large files"),
                    Prop::time(tneftest::kTagClientSubmitTime, kSent),
                    Prop::int32(tneftest::kTagImportance, 1),
                    Prop::string8(tneftest::kTagSentRepresentingName8, "Ann Smith"),
                    Prop::string8(tneftest::kTagSentRepresentingEmail8, "ann@example.com"),
                    Prop::int32(tneftest::kTagInternetCodepage, 1252)});
    w.attachRendData().attachTitle("LARGE.BIN");
    return w.bytes();
}

// Bytes of a small attachment's content, the same for the same number.
Bytes smallContent(int number, uint32_t size) {
    Bytes data(size);
    for (uint32_t i = 0; i < size; ++i) data[i] = static_cast<uint8_t>('a' + (i * 7 + number) % 26);
    return data;
}

// The first attachment's properties after its data, then the small
// attachments whole (without the stream's signature).
Bytes trailingRecords(int attachments, uint32_t smallBytes) {
    TnefWriter w;
    w.attachmentProps({Prop::int32(tneftest::kTagAttachMethod, 1),
                       Prop::string8(tneftest::kTagAttachLongFilename8, "large.bin"),
                       Prop::time(tneftest::kTagLastModificationTime, kSent)});
    for (int n = 2; n <= attachments; ++n) {
        std::string name = "part-" + std::to_string(n) + ".txt";
        w.attachRendData().attachTitle("PART-" + std::to_string(n) + ".TXT");
        w.attachData(smallContent(n, smallBytes));
        w.attachmentProps({Prop::int32(tneftest::kTagAttachMethod, 1),
                           Prop::string8(tneftest::kTagAttachLongFilename8, name),
                           Prop::time(tneftest::kTagLastModificationTime, kSent)});
    }
    return Bytes(w.bytes().begin() + kSignatureBytes, w.bytes().end());
}

// Pseudo-random bytes, so that nothing on the way can shortcut them.
std::vector<uint8_t> dataBlock() {
    std::vector<uint8_t> block(kBlockBytes);
    uint64_t x = 0x9E3779B97F4A7C15ull;
    for (size_t i = 0; i < block.size(); i += 8) {
        x ^= x << 13;
        x ^= x >> 7;
        x ^= x << 17;
        std::memcpy(block.data() + i, &x, 8);
    }
    return block;
}

class OutputFile {
public:
    OutputFile(const std::string& path, std::string* error) : error_(error) {
        fd_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd_ < 0) fail("cannot create " + path);
    }
    ~OutputFile() {
        if (fd_ >= 0) ::close(fd_);
    }
    bool ok() const { return fd_ >= 0; }
    bool write(const uint8_t* bytes, size_t count) {
        while (count > 0) {
            ssize_t n = ::write(fd_, bytes, count);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) return fail("cannot write");
            bytes += n;
            count -= static_cast<size_t>(n);
        }
        return true;
    }
    bool write(const Bytes& bytes) { return write(bytes.data(), bytes.size()); }
    bool skip(uint64_t count) {
        if (::lseek(fd_, static_cast<off_t>(count), SEEK_CUR) < 0) return fail("cannot seek");
        return true;
    }
    bool close() {
        int fd = fd_;
        fd_ = -1;
        if (::close(fd) != 0) return fail("cannot close");
        return true;
    }

private:
    bool fail(const std::string& what) {
        *error_ = what + ": " + std::strerror(errno);
        return false;
    }
    int fd_ = -1;
    std::string* error_;
};

}  // namespace

uint64_t bigStreamOverhead(int attachments, uint32_t smallAttachmentBytes) {
    return leadingRecords().size() + kRecordFrame +
           trailingRecords(attachments, smallAttachmentBytes).size();
}

bool writeBigStream(const std::string& path, const BigStreamPlan& plan, BigStreamLayout* layout,
                    std::string* error) {
    if (plan.attachments < 1) {
        *error = "a stream needs at least one attachment";
        return false;
    }
    if (plan.fileBytes > kMaxBigStreamBytes) {
        *error = "the large attachment would not fit a 32-bit record length";
        return false;
    }
    Bytes head = leadingRecords();
    Bytes tail = trailingRecords(plan.attachments, plan.smallAttachmentBytes);
    uint64_t overhead = head.size() + kRecordFrame + tail.size();
    if (plan.fileBytes <= overhead) {
        *error = "a stream of this plan needs more than " + std::to_string(overhead) + " bytes";
        return false;
    }
    auto dataBytes = static_cast<uint32_t>(plan.fileBytes - overhead);

    OutputFile out(path, error);
    if (!out.ok() || !out.write(head)) return false;
    Bytes recordHeader{tneftest::kLevelAttachment};
    tneftest::putLe16(recordHeader, kRecAttachData);
    tneftest::putLe16(recordHeader, 0x0006);
    tneftest::putLe32(recordHeader, dataBytes);
    if (!out.write(recordHeader)) return false;

    uint32_t sum = 0;
    if (plan.sparse) {
        if (!out.skip(dataBytes)) return false;  // a hole: zeros, which sum to 0
    } else {
        std::vector<uint8_t> block = dataBlock();
        uint32_t blockSum = 0;
        for (uint8_t b : block) blockSum += b;
        for (uint64_t left = dataBytes; left > 0;) {
            size_t n = left < block.size() ? static_cast<size_t>(left) : block.size();
            if (!out.write(block.data(), n)) return false;
            if (n == block.size()) {
                sum += blockSum;
            } else {
                for (size_t i = 0; i < n; ++i) sum += block[i];
            }
            left -= n;
        }
    }
    Bytes checksum;
    tneftest::putLe16(checksum, sum & 0xFFFF);
    if (!out.write(checksum) || !out.write(tail) || !out.close()) return false;

    if (layout != nullptr) {
        layout->fileBytes = plan.fileBytes;
        layout->largeDataOffset = static_cast<int64_t>(head.size() + recordHeader.size());
        layout->largeDataBytes = dataBytes;
        layout->subfiles = 1 + plan.attachments;
    }
    return true;
}

bool parseByteSize(const std::string& text, uint64_t* bytes) {
    if (text.empty()) return false;
    size_t digits = 0;
    uint64_t value = 0;
    while (digits < text.size() && text[digits] >= '0' && text[digits] <= '9') {
        if (value > (UINT64_MAX - 9) / 10) return false;
        value = value * 10 + static_cast<uint64_t>(text[digits] - '0');
        ++digits;
    }
    if (digits == 0) return false;
    std::string suffix = text.substr(digits);
    int shift = 0;
    if (suffix == "" || suffix == "B") shift = 0;
    else if (suffix == "K" || suffix == "k" || suffix == "KiB") shift = 10;
    else if (suffix == "M" || suffix == "m" || suffix == "MiB") shift = 20;
    else if (suffix == "G" || suffix == "g" || suffix == "GiB") shift = 30;
    else return false;
    if (value > (UINT64_MAX >> shift)) return false;
    *bytes = value << shift;
    return true;
}

}  // namespace tnefbench
