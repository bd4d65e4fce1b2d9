// The compressed-RTF decoder against a plain item-by-item model of the
// dictionary, on random mixes of literals and references: runs of literals of
// every length between references, references from far back, from a few
// bytes back (overlapping what they write), from before the buffer, and
// texts that end anywhere within a group.
#include <gtest/gtest.h>

#include <random>

#include "host/memory.h"
#include "render/rtf_decompress.h"
#include "render/rtf_prologue.h"
#include "tests/support/lzfu_compressor.h"

using namespace tneftest;

namespace {

Bytes decode(const Bytes& value) {
    tnefhost::HostMemory memory;
    const Bytes copy(value);  // exactly the value's size, for the sanitizer
    uint8_t* text = nullptr;
    uint32_t size = 0;
    EXPECT_EQ(tnefDecompressRtf(memory.allocator(), copy.data(), static_cast<int32_t>(copy.size()),
                                &text, &size), 0);
    Bytes out(text, text + (text != nullptr ? size : 0));
    memory.release(text);
    return out;
}

// The dictionary as the format describes it: a 4096-byte ring that starts
// with the prologue, written byte by byte.
class Model {
public:
    Model() : ring_(kRtfPrologueText, kRtfPrologueText + kRtfPrologueSize) {
        ring_.resize(kRtfDictionarySize);
    }
    void literal(uint8_t byte) { put(byte); }
    void reference(uint16_t position, uint8_t length) {
        // A place not yet written, in a ring that has not gone round, yields
        // nothing.
        if (written_ < kRtfDictionarySize && position >= written_) return;
        for (uint8_t i = 0; i < length; ++i) put(ring_[(position + i) % kRtfDictionarySize]);
    }
    uint16_t writePosition() const { return static_cast<uint16_t>(written_ % kRtfDictionarySize); }
    const Bytes& text() const { return text_; }

private:
    void put(uint8_t byte) {
        ring_[written_ % kRtfDictionarySize] = byte;
        ++written_;
        text_.push_back(byte);
    }
    Bytes ring_;
    size_t written_ = kRtfPrologueSize;
    Bytes text_;
};

struct Mix {
    double literals;  // share of literal items
    double near;      // share of references from up to 20 bytes back
    double unwritten; // share of references to places never written
};

TEST(RtfDecompressGroups, RandomItemsDecodeAsTheModelSays) {
    const Mix mixes[] = {{0.9, 0.1, 0.0}, {0.6, 0.2, 0.02}, {0.3, 0.3, 0.05},
                         {0.05, 0.5, 0.0}, {0.5, 0.0, 0.0}};
    std::mt19937 random(20240611);
    for (const Mix& mix : mixes) {
        for (int round = 0; round < 20; ++round) {
            Model model;
            std::vector<LzfuItem> items;
            const int count = 1 + static_cast<int>(random() % 6000);
            std::uniform_real_distribution<double> chance(0.0, 1.0);
            for (int i = 0; i < count; ++i) {
                if (chance(random) < mix.literals) {
                    auto byte = static_cast<uint8_t>(random());
                    items.push_back(LzfuItem::byte(byte));
                    model.literal(byte);
                    continue;
                }
                auto length = static_cast<uint8_t>(2 + random() % 16);
                uint16_t position = static_cast<uint16_t>(random() % kRtfDictionarySize);
                double kind = chance(random);
                if (kind < mix.near) {
                    position = static_cast<uint16_t>(
                        (model.writePosition() + kRtfDictionarySize - 1 - random() % 20) %
                        kRtfDictionarySize);
                } else if (kind < mix.near + mix.unwritten) {
                    position = static_cast<uint16_t>((model.writePosition() + 1 + random() % 50) %
                                                     kRtfDictionarySize);
                }
                items.push_back(LzfuItem::ref(position, length));
                model.reference(position, length);
            }
            const Bytes& text = model.text();
            Bytes value = lzfuValue(packLzfuItems(items), static_cast<uint32_t>(text.size()),
                                    kLzfuTypeCompressed);
            ASSERT_EQ(decode(value), text) << "literals " << mix.literals << ", round " << round;
        }
    }
}

// A last group of eight full references that ends exactly at the raw size,
// with input left over: nothing may be written past the text's end (the
// sanitizer build sees any such write).
TEST(RtfDecompressGroups, AGroupThatEndsExactlyAtTheRawSizeWritesNothingPastIt) {
    for (int leading : {0, 8, 64, 800}) {
        Model model;
        std::vector<LzfuItem> items;
        for (int i = 0; i < leading; ++i) {
            items.push_back(LzfuItem::byte(static_cast<uint8_t>('a' + i % 26)));
            model.literal(static_cast<uint8_t>('a' + i % 26));
        }
        for (int i = 0; i < 8; ++i) {
            items.push_back(LzfuItem::ref(static_cast<uint16_t>(i * 3), 17));
            model.reference(static_cast<uint16_t>(i * 3), 17);
        }
        const Bytes text = model.text();
        for (int i = 0; i < 24; ++i) items.push_back(LzfuItem::byte('z'));  // never reached
        Bytes value = lzfuValue(packLzfuItems(items), static_cast<uint32_t>(text.size()),
                                kLzfuTypeCompressed);
        EXPECT_EQ(decode(value), text) << leading;
    }
}

TEST(RtfDecompressGroups, TextsThatCompressWellOrBadlyRoundTrip) {
    std::mt19937 random(7);
    Bytes noise(300000);
    for (uint8_t& b : noise) b = static_cast<uint8_t>(' ' + random() % 95);
    Bytes hexDigits;
    for (int i = 0; i < 150000; ++i) hexDigits.push_back("0123456789abcdef"[random() % 16]);
    Bytes runs;
    for (int i = 0; i < 100000; ++i) runs.push_back(static_cast<uint8_t>('a' + (i / 333) % 26));
    for (const Bytes& text : {noise, hexDigits, runs, sampleRtfText(11, 200000)}) {
        EXPECT_EQ(decode(compressRtf(text)), text);
    }
}

}  // namespace
