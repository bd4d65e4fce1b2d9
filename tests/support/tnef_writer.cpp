#include "tests/support/tnef_writer.h"

#include <random>

namespace tneftest {

namespace {

enum : uint16_t {
    kRecBody = 0x800C,
    kRecMessageClass = 0x8008,
    kRecAttachData = 0x800F,
    kRecAttachTitle = 0x8010,
    kRecAttachRendData = 0x9002,
    kRecMapiProps = 0x9003,
    kRecRecipTable = 0x9004,
    kRecAttachment = 0x9005,
    kRecVersion = 0x9006,
    kRecOemCodePage = 0x9007,
};

// Types whose values carry a 4-byte length and are padded to 4 bytes.
bool isCounted(uint32_t type) {
    return type == 0 || type == 13 || type == 30 || type == 31 || type == 258;
}

void append(Bytes& out, const Bytes& more) {
    out.insert(out.end(), more.begin(), more.end());
}

// `data`, then zero bytes up to a multiple of 4.
void appendPadded(Bytes& out, const Bytes& data) {
    append(out, data);
    out.resize(out.size() + (4 - data.size() % 4) % 4, 0);
}

Bytes le32(uint32_t value) {
    Bytes out;
    putLe32(out, value);
    return out;
}

Bytes cString(const std::string& text) {
    Bytes out = bytesOf(text);
    out.push_back(0);
    return out;
}

uint16_t checksumOf(const Bytes& data) {
    uint32_t sum = 0;
    for (uint8_t b : data) sum += b;
    return static_cast<uint16_t>(sum);
}

// A count, then the blocks.
template <typename Item, typename Write>
Bytes counted(const std::vector<Item>& items, std::optional<int32_t> count, Write write) {
    Bytes out = le32(static_cast<uint32_t>(count.value_or(static_cast<int32_t>(items.size()))));
    for (const Item& item : items) append(out, write(item));
    return out;
}

}  // namespace

void putLe16(Bytes& out, uint32_t value) {
    out.push_back(static_cast<uint8_t>(value));
    out.push_back(static_cast<uint8_t>(value >> 8));
}

void putLe32(Bytes& out, uint32_t value) {
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

void putLe64(Bytes& out, uint64_t value) {
    putLe32(out, static_cast<uint32_t>(value));
    putLe32(out, static_cast<uint32_t>(value >> 32));
}

Bytes bytesOf(const std::string& text) {
    return Bytes(text.begin(), text.end());
}

Bytes utf16(const std::string& text) {
    Bytes out;
    for (size_t i = 0; i < text.size();) {
        auto lead = static_cast<uint8_t>(text[i]);
        size_t extra = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
        uint32_t code = extra == 0 ? lead : lead & (0x3F >> extra);
        for (size_t k = 1; k <= extra && i + k < text.size(); ++k) code = (code << 6) | (text[i + k] & 0x3F);
        i += 1 + extra;
        if (code > 0xFFFF) {
            putLe16(out, 0xD800 + ((code - 0x10000) >> 10));
            code = 0xDC00 + (code & 0x3FF);
        }
        putLe16(out, code);
    }
    return out;
}

std::string wide(const std::string& text) {
    Bytes bytes = utf16(text);
    return std::string(bytes.begin(), bytes.end());
}

Bytes randomBytes(size_t size, uint32_t seed) {
    std::mt19937 random(seed);
    Bytes bytes(size);
    for (uint8_t& b : bytes) b = static_cast<uint8_t>(random());
    return bytes;
}

Prop Prop::int32(uint32_t tag, int32_t value) {
    return raw(tag, {le32(static_cast<uint32_t>(value))});
}

Prop Prop::int64(uint32_t tag, uint64_t value) {
    Bytes b;
    putLe64(b, value);
    return raw(tag, {b});
}

Prop Prop::time(uint32_t tag, uint64_t filetime) {
    return int64(tag, filetime);
}

Prop Prop::string8(uint32_t tag, const std::string& text, bool terminator) {
    return raw(tag, {terminator ? cString(text) : bytesOf(text)});
}

Prop Prop::unicode(uint32_t tag, const std::string& text, bool terminator) {
    Bytes b = utf16(text);
    if (terminator) b.insert(b.end(), 2, 0);
    return raw(tag, {b});
}

Prop Prop::binary(uint32_t tag, const Bytes& data) {
    return raw(tag, {data});
}

Prop Prop::raw(uint32_t tag, std::vector<Bytes> values) {
    Prop p;
    p.tag = tag;
    p.values = std::move(values);
    return p;
}

Prop Prop::named(Prop prop, uint32_t numericName) {
    prop.nameKind = 0;
    prop.numericName = numericName;
    return prop;
}

Prop Prop::namedString(Prop prop, const Bytes& name) {
    prop.nameKind = 1;
    prop.stringName = name;
    return prop;
}

Bytes propertyBytes(const Prop& prop) {
    Bytes out = le32(prop.tag);
    const uint32_t id = prop.tag >> 16;
    const bool multi = (prop.tag & 0x1000) != 0;
    const uint32_t type = prop.tag & 0xEFFF;
    if (id >= 0x8000 && id <= 0xFFFE) {
        append(out, prop.guid);
        putLe32(out, prop.nameKind);
        if (prop.nameKind == 0) {
            putLe32(out, prop.numericName);
        } else {
            putLe32(out, prop.nameLengthOverride.value_or(static_cast<uint32_t>(prop.stringName.size())));
            appendPadded(out, prop.stringName);
        }
    }
    if (prop.writeCount.value_or(multi || (type != 0 && isCounted(type)))) {
        putLe32(out, static_cast<uint32_t>(prop.valueCount.value_or(static_cast<int32_t>(prop.values.size()))));
    }
    for (size_t i = 0; i < prop.values.size(); ++i) {
        const Bytes& value = prop.values[i];
        if (!isCounted(type)) {
            append(out, value);
            continue;
        }
        putLe32(out, i == 0 && prop.lengthOverride ? *prop.lengthOverride : static_cast<uint32_t>(value.size()));
        appendPadded(out, value);
    }
    return out;
}

Bytes propertyBlock(const std::vector<Prop>& props, std::optional<int32_t> count) {
    return counted(props, count, propertyBytes);
}

Bytes recipientTable(const std::vector<std::vector<Prop>>& rows, std::optional<int32_t> rowCount) {
    return counted(rows, rowCount, [](const std::vector<Prop>& row) { return propertyBlock(row); });
}

TnefWriter::TnefWriter(uint32_t signature, uint16_t key) {
    putLe32(bytes_, signature);
    putLe16(bytes_, key);
}

TnefWriter& TnefWriter::record(uint8_t level, uint16_t id, const Bytes& data, RecordOptions options) {
    bytes_.push_back(level);
    putLe16(bytes_, id);
    putLe16(bytes_, options.type);
    putLe32(bytes_, options.length.value_or(static_cast<uint32_t>(data.size())));
    lastData_ = position();
    append(bytes_, data);
    if (options.writeChecksum) putLe16(bytes_, options.checksum.value_or(checksumOf(data)));
    return *this;
}

TnefWriter& TnefWriter::raw(const Bytes& bytes) {
    append(bytes_, bytes);
    return *this;
}

TnefWriter& TnefWriter::version() {
    return record(kLevelMessage, kRecVersion, le32(0x00010000));
}

TnefWriter& TnefWriter::oemCodePage(uint32_t codePage) {
    Bytes v = le32(codePage);
    putLe32(v, 0);
    return record(kLevelMessage, kRecOemCodePage, v);
}

TnefWriter& TnefWriter::messageClass(const std::string& text) {
    return record(kLevelMessage, kRecMessageClass, cString(text));
}

TnefWriter& TnefWriter::body(const std::string& text) {
    return record(kLevelMessage, kRecBody, bytesOf(text));
}

TnefWriter& TnefWriter::messageProps(const std::vector<Prop>& props) {
    return record(kLevelMessage, kRecMapiProps, propertyBlock(props));
}

TnefWriter& TnefWriter::recipients(const std::vector<std::vector<Prop>>& rows) {
    return record(kLevelMessage, kRecRecipTable, recipientTable(rows));
}

TnefWriter& TnefWriter::attachRendData() {
    Bytes v(14, 0);
    v[0] = 1;
    return record(kLevelAttachment, kRecAttachRendData, v);
}

TnefWriter& TnefWriter::attachTitle(const std::string& title) {
    return record(kLevelAttachment, kRecAttachTitle, cString(title));
}

TnefWriter& TnefWriter::attachData(const Bytes& data) {
    return record(kLevelAttachment, kRecAttachData, data);
}

TnefWriter& TnefWriter::attachmentProps(const std::vector<Prop>& props) {
    return record(kLevelAttachment, kRecAttachment, propertyBlock(props));
}

Bytes buildMessage(const MessageLayout& plan) {
    TnefWriter w;
    w.version();
    if (plan.oemCodePage) w.oemCodePage(*plan.oemCodePage);
    if (plan.messageClass) w.messageClass(*plan.messageClass);
    if (plan.body) w.body(*plan.body);
    if (plan.recipients) w.recipients(*plan.recipients);
    if (!plan.props.empty()) w.messageProps(plan.props);
    for (const AttachmentLayout& attachment : plan.attachments) {
        w.attachRendData();
        if (attachment.title) w.attachTitle(*attachment.title);
        if (attachment.data) w.attachData(*attachment.data);
        if (!attachment.props.empty()) w.attachmentProps(attachment.props);
    }
    return w.bytes();
}

Bytes noteMessage(const std::string& subject, const std::string& body,
                  std::vector<AttachmentLayout> attachments) {
    MessageLayout plan;
    plan.body = body;
    plan.props = {Prop::string8(kTagSubject8, subject)};
    plan.attachments = std::move(attachments);
    return buildMessage(plan);
}

AttachmentLayout embeddedMessage(const std::string& title, const Bytes& inner) {
    // IID_IMessage, {00020307-0000-0000-C000-000000000046}, as stored.
    Bytes value = {0x07, 0x03, 0x02, 0x00, 0x00, 0x00, 0x00, 0x00,
                   0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46};
    append(value, inner);
    AttachmentLayout attachment;
    attachment.title = title;
    attachment.props = {Prop::int32(kTagAttachMethod, 5), Prop::raw(kTagAttachDataObject, {value})};
    return attachment;
}

}  // namespace tneftest
