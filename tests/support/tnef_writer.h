// The project's TNEF writer: builds streams for tests, samples and benches
// from a readable description. It writes well-formed streams by default and
// lets a test get any field deliberately wrong.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tneftest {

using Bytes = std::vector<uint8_t>;

void putLe16(Bytes& out, uint32_t value);
void putLe32(Bytes& out, uint32_t value);
void putLe64(Bytes& out, uint64_t value);
Bytes bytesOf(const std::string& text);
// UTF-16LE of a UTF-8 text; code points above U+FFFF become surrogate pairs.
Bytes utf16(const std::string& text);
// UTF-16LE of a UTF-8 text as a byte string, to compare with outputs held as text.
std::string wide(const std::string& text);
// `size` bytes of noise, the same for the same seed.
Bytes randomBytes(size_t size, uint32_t seed);

// One MAPI property as it stands in a block.
struct Prop {
    uint32_t tag = 0;
    // Each value's bytes: the exact inline bytes for fixed-size types, the
    // data (without length and filler) for counted types.
    std::vector<Bytes> values;

    // Name fields, written for ids 0x8000..0xFFFE.
    Bytes guid = Bytes(16, 0xAB);
    uint32_t nameKind = 0;  // 0: numeric name; else string name
    uint32_t numericName = 0;
    Bytes stringName;

    // Deliberate deviations.
    std::optional<int32_t> valueCount;       // count field to write instead of values.size()
    std::optional<bool> writeCount;          // force the count field on or off
    std::optional<uint32_t> lengthOverride;  // L written for the first counted value
    std::optional<uint32_t> nameLengthOverride;

    static Prop int32(uint32_t tag, int32_t value);
    static Prop int64(uint32_t tag, uint64_t value);
    static Prop time(uint32_t tag, uint64_t filetime);
    static Prop string8(uint32_t tag, const std::string& text, bool terminator = true);
    static Prop unicode(uint32_t tag, const std::string& text, bool terminator = true);
    static Prop binary(uint32_t tag, const Bytes& data);
    static Prop raw(uint32_t tag, std::vector<Bytes> values);
    static Prop named(Prop prop, uint32_t numericName);
    static Prop namedString(Prop prop, const Bytes& name);
};

// A property block: count, then properties; propertyBytes is one of them alone.
Bytes propertyBlock(const std::vector<Prop>& props, std::optional<int32_t> count = std::nullopt);
Bytes propertyBytes(const Prop& prop);

// A recipient table: row count, then per row a property count and properties.
Bytes recipientTable(const std::vector<std::vector<Prop>>& rows,
                     std::optional<int32_t> rowCount = std::nullopt);

enum : uint8_t { kLevelMessage = 1, kLevelAttachment = 2 };

class TnefWriter {
public:
    explicit TnefWriter(uint32_t signature = 0x223E9F78, uint16_t key = 0x0001);

    struct RecordOptions {
        uint16_t type = 0x0006;
        std::optional<uint16_t> checksum;  // the right sum when unset
        std::optional<uint32_t> length;    // data size when unset
        bool writeChecksum = true;
    };

    TnefWriter& record(uint8_t level, uint16_t id, const Bytes& data, RecordOptions options);
    TnefWriter& record(uint8_t level, uint16_t id, const Bytes& data) {
        return record(level, id, data, RecordOptions{});
    }
    TnefWriter& raw(const Bytes& bytes);

    TnefWriter& version();
    TnefWriter& oemCodePage(uint32_t codePage);
    TnefWriter& messageClass(const std::string& text);
    TnefWriter& body(const std::string& text);
    TnefWriter& messageProps(const std::vector<Prop>& props);
    TnefWriter& recipients(const std::vector<std::vector<Prop>>& rows);
    TnefWriter& attachRendData();
    TnefWriter& attachTitle(const std::string& title);
    TnefWriter& attachData(const Bytes& data);
    TnefWriter& attachmentProps(const std::vector<Prop>& props);

    int64_t position() const { return static_cast<int64_t>(bytes_.size()); }
    // Where the data of the last record written begins.
    int64_t lastDataPosition() const { return lastData_; }
    const Bytes& bytes() const { return bytes_; }

private:
    Bytes bytes_;
    int64_t lastData_ = 0;
};

// Shorthand for "a message with these properties and these attachments".
struct AttachmentLayout {
    std::optional<std::string> title;
    std::optional<Bytes> data;  // TNEFREC_ATTACHDATA when set
    std::vector<Prop> props;
};

struct MessageLayout {
    std::optional<uint32_t> oemCodePage;
    std::optional<std::string> messageClass;
    std::optional<std::string> body;
    std::vector<Prop> props;
    std::optional<std::vector<std::vector<Prop>>> recipients;
    std::vector<AttachmentLayout> attachments;
};

Bytes buildMessage(const MessageLayout& plan);
// An 8-bit subject, a text body and these attachments.
Bytes noteMessage(const std::string& subject, const std::string& body,
                  std::vector<AttachmentLayout> attachments);

// An attachment that holds a whole message (attach method 5): its data
// object is the 16-byte interface identifier of a message followed by
// `inner`, a whole stream made by this writer. The module names it
// "<title, up to 8 bytes>_zd<place>" and extracts `inner` as it is.
AttachmentLayout embeddedMessage(const std::string& title, const Bytes& inner);

// Well-known tags.
enum : uint32_t {
    kTagSubject8 = 0x0037001E,
    kTagSubject16 = 0x0037001F,
    kTagMessageClass8 = 0x001A001E,
    kTagMessageClass16 = 0x001A001F,
    kTagClientSubmitTime = 0x00390040,
    kTagImportance = 0x00170003,
    kTagSentRepresentingName8 = 0x0042001E,
    kTagSentRepresentingName16 = 0x0042001F,
    kTagSentRepresentingEmail8 = 0x0065001E,
    kTagSentRepresentingEmail16 = 0x0065001F,
    kTagSenderName8 = 0x0C1A001E,
    kTagSenderEmail8 = 0x0C1F001E,
    kTagInternetCodepage = 0x3FDE0003,
    kTagMessageCodepage = 0x3FFD0003,
    kTagAttachMethod = 0x37050003,
    kTagAttachDataBinary = 0x37010102,
    kTagAttachDataObject = 0x3701000D,
    kTagAttachLongFilename8 = 0x3707001E,
    kTagAttachLongFilename16 = 0x3707001F,
    kTagLastModificationTime = 0x30080040,
    kTagCreationTime = 0x30070040,
    kTagBodyHtml8 = 0x1013001E,
    kTagHtml = 0x10130102,
    kTagRtfCompressed = 0x10090102,
    kTagRecipientType = 0x0C150003,
    kTagDisplayName8 = 0x3001001E,
    kTagDisplayName16 = 0x3001001F,
    kTagEmailAddress8 = 0x3003001E,
    kTagEmailAddress16 = 0x3003001F,
    kTagSmtpAddress8 = 0x39FE001E,
    kTagSmtpAddress16 = 0x39FE001F,
};

}  // namespace tneftest
