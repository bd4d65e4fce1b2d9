// The compressed-RTF decoder: the published example, each reference rule at
// its boundaries (long texts that go round the dictionary among them),
// values that are not compressed, every prefix of a value, impossible sizes.
#include <gtest/gtest.h>

#include <string>

#include "host/memory.h"
#include "render/rtf_decompress.h"
#include "render/rtf_prologue.h"
#include "tests/support/lzfu_compressor.h"

using namespace tneftest;

namespace {

// Decodes from a copy of exactly the value's size, so that the sanitizer sees
// any read past it; checks the status and that nothing is left allocated.
Bytes decode(const Bytes& value) {
    tnefhost::HostMemory memory;
    const Bytes copy(value);
    uint8_t* text = nullptr;
    uint32_t size = 0;
    EXPECT_EQ(tnefDecompressRtf(memory.allocator(), copy.data(), static_cast<int32_t>(copy.size()),
                                &text, &size), 0);
    Bytes out(text, text + (text != nullptr ? size : 0));
    memory.allocator()->free(memory.allocator(), text);
    EXPECT_EQ(memory.liveBlocks(), 0u);
    return out;
}

Bytes hex(const std::string& text) {
    Bytes out;
    for (size_t i = 0; i + 1 < text.size(); i += 3) out.push_back(std::stoi(text.substr(i, 2), 0, 16));
    return out;
}

Bytes operator+(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// The first n bytes of a fixed sample text as literal items, then `items`.
std::vector<LzfuItem> after(size_t n, std::vector<LzfuItem> items) {
    std::vector<LzfuItem> all;
    for (uint8_t byte : sampleRtfText(9, n)) all.push_back(LzfuItem::byte(byte));
    all.insert(all.end(), items.begin(), items.end());
    return all;
}

Bytes lzfu(const std::vector<LzfuItem>& items, uint32_t rawSize) {
    return lzfuValue(packLzfuItems(items), rawSize, kLzfuTypeCompressed);
}

TEST(RtfDecompress, PublishedExampleDecodesAndIsReproduced) {
    const Bytes example = hex(
        "2D 00 00 00 2B 00 00 00 4C 5A 46 75 F1 C5 C7 A7 03 00 0A 00 72 63 70 67 31 32 35 42 32 "
        "0A F3 20 68 65 6C 09 00 20 62 77 05 B0 6C 64 7D 0A 80 0F A0");
    // The last reference takes the line feed and carriage return of the prologue.
    const Bytes text = bytesOf("{\\rtf1\\ansi\\ansicpg1252\\pard hello world}\n\r");
    EXPECT_EQ(decode(example), text);
    EXPECT_EQ(compressRtf(text), example);
}

TEST(RtfDecompress, ReferenceRules) {
    // The buffer as the cases with leading literals see it.
    const Bytes buffer = bytesOf(kRtfPrologueText) + sampleRtfText(9, 5000);
    auto at = [&](size_t from, size_t n) {
        return Bytes(buffer.begin() + from, buffer.begin() + from + n);
    };
    std::vector<LzfuItem> prologue;
    for (uint16_t place = 0; place < 204; place += 17) prologue.push_back(LzfuItem::ref(place, 17));
    prologue.push_back(LzfuItem::ref(204, 3));
    // One literal, then 40 copies from its place: the first overlaps itself.
    std::vector<LzfuItem> run(41, LzfuItem::ref(207, 17));
    run[0] = LzfuItem::byte('Z');
    // A last group of eight full references that ends exactly at the raw
    // size, with input left over: nothing may be written past the text's end.
    std::vector<LzfuItem> eight;
    Bytes eightText;
    for (uint16_t i = 0; i < 8; ++i) {
        eight.push_back(LzfuItem::ref(i * 3, 17));
        eightText = eightText + at(i * 3, 17);
    }
    eight.insert(eight.end(), 24, LzfuItem::byte('z'));  // never reached
    const struct {
        std::vector<LzfuItem> items;
        uint32_t rawSize;
        Bytes expected;
        bool cutByRawSize;
    } cases[] = {
        {prologue, 207, at(0, 207), false},
        {after(4793, {LzfuItem::ref(0x123, 6)}), 4799, at(207, 4793) + at(4387, 6), false},
        {after(4093, {LzfuItem::ref(0x123, 6)}), 4099, at(207, 4093) + at(291, 6), false},
        {after(3889, {LzfuItem::ref(0, 3)}), 3892, at(207, 3889) + at(0, 3), false},
        {after(3889, {LzfuItem::ref(4095, 3)}), 3892, at(207, 3889) + Bytes(3, buffer[4095]), false},
        {after(4793, {LzfuItem::ref(904, 3)}), 4796, at(207, 4793) + at(904, 3), false},  // end mark
        {run, 681, Bytes(681, 'Z'), false},
        {{LzfuItem::ref(300, 5), LzfuItem::byte('Q')}, 1, bytesOf("Q"), false},  // never written
        {{LzfuItem::ref(207, 2), LzfuItem::byte('Q')}, 1, bytesOf("Q"), false},  // end mark
        {run, 648, Bytes(648, 'Z'), true},  // ends 120 bytes after a group boundary
        {{LzfuItem::ref(0, 17)}, 5, bytesOf("{\\rtf"), true},
        {{LzfuItem::byte('x')}, 0, {}, true},
        {{LzfuItem::byte('a'), LzfuItem::byte('b')}, 4, hex("61 62 00 00"), true},
        {eight, 136, eightText, true},
        {after(64, eight), 200, at(207, 64) + eightText, true},
    };
    // Each case at the end of the input, where every item is checked against
    // the bounds, and followed by enough literals to be decoded by whole groups.
    const std::vector<LzfuItem> tail = after(160, {});
    for (const auto& c : cases) {
        EXPECT_EQ(decode(lzfu(c.items, c.rawSize)), c.expected) << c.rawSize;
        if (c.cutByRawSize) continue;
        std::vector<LzfuItem> padded = c.items;
        padded.insert(padded.end(), tail.begin(), tail.end());
        EXPECT_EQ(decode(lzfu(padded, c.rawSize + 160)), c.expected + sampleRtfText(9, 160));
    }
}

TEST(RtfDecompress, ValuesThatAreNotCompressed) {
    const Bytes compressed = compressRtf(bytesOf("{\\rtf1 some text}"));
    const Bytes first16(compressed.begin(), compressed.begin() + 16);
    const std::pair<Bytes, Bytes> cases[] = {
        {lzfuValue(bytesOf("abcdef"), 3, kLzfuTypeStored), bytesOf("abc")},
        {lzfuValue(bytesOf("abc"), 5, kLzfuTypeStored), hex("61 62 63 00 00")},
        {lzfuValue(bytesOf("hello"), 99, 0x58585858), bytesOf("hello")},  // unknown type
        {first16, first16},                                                // no header
        {{}, {}},
    };
    for (const auto& [value, expected] : cases) EXPECT_EQ(decode(value), expected);
}

TEST(RtfDecompress, EveryPrefixDecodesWithinBounds) {
    const Bytes text = sampleRtfText(7, 2500);
    const Bytes value = compressRtf(text);
    for (size_t n = 0; n <= value.size(); ++n) {
        const Bytes prefix(value.begin(), value.begin() + n);
        Bytes decoded = decode(prefix);
        if (n <= 16) {
            EXPECT_EQ(decoded, prefix);
            continue;
        }
        // What was decoded, at most one stray byte from a cut reference, then
        // zeros; the end mark is never needed.
        ASSERT_EQ(decoded.size(), text.size());
        size_t k = std::mismatch(text.begin(), text.end(), decoded.begin()).first - text.begin();
        EXPECT_TRUE(n + 2 < value.size() || k == text.size()) << n;
        for (size_t i = k + 1; i < text.size(); ++i) ASSERT_EQ(decoded[i], 0) << n;
    }
}

TEST(RtfDecompress, RefusedOrImpossibleSizesGiveStatus2AndLeaveOutputsAlone) {
    const Bytes small = compressRtf(bytesOf("{\\rtf1 x}"));
    const auto smallSize = static_cast<int32_t>(small.size());
    const struct {
        Bytes value;
        int32_t size;
        uint64_t refuse;
    } cases[] = {
        {lzfuValue(hex("00"), 0xFFFFFFFF, kLzfuTypeCompressed), 17, 0},
        {lzfuValue(hex("00"), 0x7FFFFF31, kLzfuTypeCompressed), 17, 0},  // + 207 passes 2^31
        {lzfuValue(hex("00"), 0x80000000, kLzfuTypeStored), 17, 0},
        {small, -5, 0},
        {small, smallSize, 1},
        {storeRtfUncompressed(bytesOf("abc")), 19, 1},
    };
    for (const auto& c : cases) {
        tnefhost::HostMemory memory;
        memory.refuseRequest(c.refuse);
        uint8_t marker = 0;
        uint8_t* text = &marker;
        uint32_t size = 12345;
        EXPECT_EQ(tnefDecompressRtf(memory.allocator(), c.value.data(), c.size, &text, &size), 2);
        EXPECT_TRUE(text == &marker && size == 12345u && memory.liveBlocks() == 0u) << c.size;
    }
}

}  // namespace
