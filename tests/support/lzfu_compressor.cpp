#include "tests/support/lzfu_compressor.h"

#include <algorithm>
#include <array>

#include "render/rtf_prologue.h"

namespace tneftest {

namespace {

constexpr size_t kMinMatch = 2;
constexpr size_t kMaxMatch = 17;
constexpr size_t kWindow = kRtfDictionarySize - 1;  // the write position itself is the end mark
constexpr size_t kHashSize = 1 << 16;
constexpr uint32_t kNoPosition = UINT32_MAX;

uint32_t hashAt(const Bytes& text, size_t at) {
    return static_cast<uint32_t>(text[at]) | (static_cast<uint32_t>(text[at + 1]) << 8);
}

// Hash chains over the prologue followed by the raw text: the dictionary
// seen linearly, so that a match may run on into the bytes it produces.
class MatchFinder {
public:
    explicit MatchFinder(const Bytes& text) : text_(text), previous_(text.size(), kNoPosition) {
        head_.fill(kNoPosition);
    }

    void insert(size_t at) {
        if (at + 1 >= text_.size()) return;
        uint32_t key = hashAt(text_, at);
        previous_[at] = head_[key];
        head_[key] = static_cast<uint32_t>(at);
    }

    // Longest match for text[at..] among the 4095 positions before it; the
    // oldest wins a tie. Returns its length (0 below two) and place.
    size_t longest(size_t at, size_t* from) const {
        if (at + 1 >= text_.size()) return 0;
        const size_t limit = std::min(kMaxMatch, text_.size() - at);
        const size_t oldest = at > kWindow ? at - kWindow : 0;
        size_t best = 0;
        for (uint32_t candidate = head_[hashAt(text_, at)];
             candidate != kNoPosition && candidate >= oldest; candidate = previous_[candidate]) {
            size_t length = 0;
            while (length < limit && text_[candidate + length] == text_[at + length]) ++length;
            if (length >= best && length >= kMinMatch) {
                best = length;
                *from = candidate;
            }
        }
        return best;
    }

private:
    const Bytes& text_;
    std::array<uint32_t, kHashSize> head_;
    std::vector<uint32_t> previous_;
};

// Greedy longest-match parse of `raw`, ending with the end mark (a
// reference to the write position).
std::vector<LzfuItem> lzfuItemsFor(const Bytes& raw) {
    Bytes text(tnefRtfPrologue(), tnefRtfPrologue() + kRtfPrologueSize);
    text.insert(text.end(), raw.begin(), raw.end());
    MatchFinder finder(text);
    for (size_t at = 0; at < kRtfPrologueSize; ++at) finder.insert(at);

    std::vector<LzfuItem> items;
    size_t at = kRtfPrologueSize;
    while (at < text.size()) {
        size_t from = 0;
        size_t length = finder.longest(at, &from);
        if (length >= kMinMatch) {
            items.push_back(LzfuItem::ref(static_cast<uint16_t>(from % kRtfDictionarySize),
                                          static_cast<uint8_t>(length)));
        } else {
            length = 1;
            items.push_back(LzfuItem::byte(text[at]));
        }
        for (size_t i = 0; i < length; ++i) finder.insert(at + i);
        at += length;
    }
    items.push_back(LzfuItem::ref(static_cast<uint16_t>(at % kRtfDictionarySize), kMinMatch));
    return items;
}

// CRC-32 of compressed RTF: reflected, polynomial 0xEDB88320, started at 0,
// with no final inversion.
uint32_t lzfuCrc32(const Bytes& data) {
    uint32_t crc = 0;
    for (uint8_t byte : data) {
        crc ^= byte;
        for (int k = 0; k < 8; ++k) crc = (crc & 1) ? 0xEDB88320u ^ (crc >> 1) : crc >> 1;
    }
    return crc;
}

}  // namespace

Bytes packLzfuItems(const std::vector<LzfuItem>& items) {
    Bytes out;
    for (size_t group = 0; group < items.size(); group += 8) {
        size_t control = out.size();
        out.push_back(0);
        for (size_t i = group; i < std::min(group + 8, items.size()); ++i) {
            const LzfuItem& item = items[i];
            if (!item.reference) {
                out.push_back(item.literal);
                continue;
            }
            out[control] |= static_cast<uint8_t>(1u << (i - group));
            out.push_back(static_cast<uint8_t>(item.position >> 4));
            out.push_back(static_cast<uint8_t>(((item.position & 0x0F) << 4) | (item.length - 2)));
        }
    }
    return out;
}

Bytes lzfuValue(const Bytes& payload, uint32_t rawSize, uint32_t type) {
    Bytes out;
    putLe32(out, static_cast<uint32_t>(payload.size() + 12));
    putLe32(out, rawSize);
    putLe32(out, type);
    putLe32(out, type == kLzfuTypeCompressed ? lzfuCrc32(payload) : 0);
    out.insert(out.end(), payload.begin(), payload.end());
    return out;
}

Bytes compressRtf(const Bytes& raw) {
    return lzfuValue(packLzfuItems(lzfuItemsFor(raw)), static_cast<uint32_t>(raw.size()),
                     kLzfuTypeCompressed);
}

Bytes storeRtfUncompressed(const Bytes& raw) {
    return lzfuValue(raw, static_cast<uint32_t>(raw.size()), kLzfuTypeStored);
}

}  // namespace tneftest
