// The host's charset services: conversions through iconv and the built-in
// tables, both calling conventions, replacements, lead bytes and HTML
// escaping.
#include "host/charsets.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "host/posix_host.h"
#include "reader/charset_names.h"
#include "tests/support/tnef_writer.h"

namespace {

using tneftest::Bytes;
using tneftest::bytesOf;
using tneftest::utf16;

struct Converted {
    int32_t status = 0;
    Bytes bytes;
};

// Measures, then converts into a buffer of the measured size, to or from
// charset `id`; both calls must agree on the length.
Converted convert(HostContext* host, bool toUnicode, CharsetId id, const Bytes& in) {
    auto service = toUnicode ? host->hostCharsetToUnicode : host->hostUnicodeToCharset;
    uint8_t replacement = toUnicode ? 0x20 : '?';
    host->currentCharset = id;
    HostText source{in.data(), static_cast<int32_t>(in.size())};
    HostTextBuffer measure{nullptr, 0};
    int32_t measured = service(host, &source, &measure, replacement, 0);
    Bytes out(static_cast<size_t>(measure.length) + 1, 0xEE);
    HostTextBuffer target{out.data(), measure.length};
    Converted result{service(host, &source, &target, replacement, 0), {}};
    EXPECT_EQ(measured, result.status);
    EXPECT_EQ(measure.length, target.length);
    EXPECT_EQ(out.back(), 0xEE) << "wrote past the capacity";
    result.bytes.assign(out.begin(), out.begin() + target.length);
    return result;
}

TEST(CharsetServices, EveryNamedIdOpensBothDirections) {
    // Numbers without a name open no conversion; every name leads back to
    // its number and converts both ways: with exact bytes for one charset per
    // kind of codec (double-byte, single-byte, one that holds back a base
    // letter, UTF-8, a stateful one, the two byte tables, UTF-16), with "Az"
    // for the others.
    struct Exact {
        std::string text;
        Bytes encoded;
    };
    const std::map<CharsetId, Exact> exact = {
        {1, {"日本\\~", {0x93, 0xFA, 0x96, 0x7B, 0x5C, 0x7E}}},
        {7, {"€ café", {0x80, 0x20, 0x63, 0x61, 0x66, 0xE9}}},
        {13, {"Việt", {0x56, 0x69, 0xEA, 0xF2, 0x74}}},  // base letter + combining mark
        {53, {"\U0001F600é", {0xF0, 0x9F, 0x98, 0x80, 0xC3, 0xA9}}},
        {55, {"日本", {0x1B, 0x24, 0x42, 0x46, 0x7C, 0x4B, 0x5C, 0x1B, 0x28, 0x42}}},
        {44, {"\u2019\uFB01\u201D\u00BB\u2026\u00DF", {0x27, 0xAE, 0xBA, 0xBB, 0xBC, 0xFB}}},  // StandardEncoding
        {45, {"€•Ÿ\u02DA\u02DC", {0xA0, 0x80, 0x98, 0x1E, 0x1F}}},  // PDFDocEncoding
        {51, {"a€", {0x61, 0x00, 0xAC, 0x20}}},
    };
    tnefhost::PosixHost host;
    HostContext* c = host.context();
    int named = 0;
    for (CharsetId id = 1; id <= kCharsetNameCount + 1; ++id) {
        bool unnamed = id == 50 || (id >= 58 && id <= 65) || (id >= 70 && id <= 93) || id == 95;
        EXPECT_EQ(unnamed, tnefhost::charsetName(id).empty()) << id;
        auto known = exact.find(id);
        const Exact test = known != exact.end() ? known->second : Exact{"Az", {}};
        Converted out = convert(c, false, id, utf16(test.text));
        EXPECT_EQ(unnamed ? 0 : 1, out.status) << id;
        EXPECT_EQ(unnamed, out.bytes.empty()) << id;
        if (unnamed) continue;
        ++named;
        if (!test.encoded.empty()) {
            EXPECT_EQ(test.encoded, out.bytes) << id;
        }
        EXPECT_EQ(id, tnefhost::charsetByName(tnefhost::charsetName(id))) << id;
        Converted back = convert(c, true, id, out.bytes);
        EXPECT_EQ(1, back.status) << id;
        EXPECT_EQ(utf16(test.text), back.bytes) << id;
    }
    EXPECT_EQ(61, named);
    EXPECT_EQ(0, convert(c, false, -1, utf16("A")).status);
    EXPECT_EQ("", tnefhost::charsetName(0));
    EXPECT_EQ(1, tnefhost::charsetByName("SHIFT_jis"));
    EXPECT_EQ(51, tnefhost::charsetByName("ISO-10646"));
    EXPECT_EQ(0, tnefhost::charsetByName("") + tnefhost::charsetByName("utf-8 "));
}

TEST(CharsetServices, ReplacementsKeepTheRestOfTheText) {
    struct Case {
        const char* what;
        bool toUnicode;
        CharsetId id;
        Bytes in;
        Bytes out;
    };
    const Case cases[] = {
        {"character the charset lacks", false, 7, utf16("a中b"), bytesOf("a?b")},
        {"lone surrogate", false, 53, Bytes{0x00, 0xD8, 'z', 0}, bytesOf("?z")},
        {"odd last byte", false, 7, {'a', 0, 'b'}, bytesOf("a?")},
        {"replacement shifts back to ASCII",
         false,
         55,
         utf16("日€"),
         {0x1B, 0x24, 0x42, 0x46, 0x7C, 0x1B, 0x28, 0x42, '?'}},
        {"replacement as an EBCDIC character", false, 46, utf16("a€"), {0x81, 0x6F}},
        {"outside a byte table", false, 44, utf16("é"), bytesOf("?")},
        {"invalid UTF-8", true, 53, {0xFF, 'a', 'b'}, utf16(" ab")},
        {"lead byte cut off", true, 1, {'a', 0x93}, utf16("a ")},
        {"unassigned byte of a table", true, 45, {0xAD, 'x'}, utf16(" x")},
    };
    tnefhost::PosixHost host;
    for (const Case& test : cases) {
        Converted result = convert(host.context(), test.toUnicode, test.id, test.in);
        EXPECT_EQ(1, result.status) << test.what;
        EXPECT_EQ(test.out, result.bytes) << test.what;
    }
}

TEST(CharsetServices, BadArgumentsAndSmallTargets) {
    tnefhost::PosixHost host;
    HostContext* c = host.context();
    Bytes text = utf16("a日");
    uint8_t out[8] = {};
    struct Case {
        const char* what;
        CharsetId charset;
        HostText source;
        HostTextBuffer target;
        int32_t status;
        int32_t length;  // stored in the target
    };
    const Case cases[] = {
        {"room for a, not for both bytes of 日", 1, {text.data(), 4}, {out, 2}, 0, 1},
        {"no room", 1, {text.data(), 4}, {out, 0}, 0, 0},
        {"null target with a length", 1, {text.data(), 4}, {nullptr, 5}, 0, 0},
        {"negative source length", 1, {text.data(), -1}, {out, 8}, 0, 0},
        {"null source bytes", 1, {nullptr, 3}, {out, 8}, 0, 0},
    };
    for (const Case& test : cases) {
        c->currentCharset = test.charset;
        HostTextBuffer target = test.target;
        EXPECT_EQ(test.status, c->hostUnicodeToCharset(c, &test.source, &target, '?', 0))
            << test.what;
        EXPECT_EQ(test.length, target.length) << test.what;
    }
    EXPECT_EQ('a', out[0]);
    HostTextBuffer target{out, 8};
    EXPECT_EQ(0, c->hostUnicodeToCharset(c, nullptr, &target, '?', 0));
}

TEST(CharsetServices, LeadByteBoundaries) {
    struct Case {
        CharsetId id;
        uint8_t byte;
        int32_t lead;
    };
    // The bytes just outside the lead-byte ranges that no character of the
    // charsets starts with (the loop below meets all the others), a charset
    // without lead bytes, and the host's default for 0.
    const Case cases[] = {
        {1, 0x80, 0}, {1, 0xA0, 0}, {1, 0xFD, 0}, {2, 0xFF, 0}, {7, 0x81, 0}, {0, 0x81, 1},
    };
    tnefhost::HostOptions options;
    options.defaultCharset = kCharsetShiftJis;
    tnefhost::PosixHost host(options);
    HostContext* c = host.context();
    for (const Case& test : cases) {
        EXPECT_EQ(test.lead, c->hostIsLeadByte(c, test.byte, test.id))
            << test.id << " " << int(test.byte);
    }
    // What the RTF header relies on: every character the charset writes in
    // two bytes starts with a lead byte, and no one-byte character is one.
    for (CharsetId id = 1; id <= 4; ++id) {
        c->currentCharset = id;
        for (uint32_t unit = 0x80; unit <= 0xFFFF; ++unit) {
            if (unit >= 0xD800 && unit <= 0xDFFF) continue;
            uint8_t in[2] = {static_cast<uint8_t>(unit), static_cast<uint8_t>(unit >> 8)};
            uint8_t out[10];
            HostText source{in, 2};
            HostTextBuffer target{out, 10};
            if (c->hostUnicodeToCharset(c, &source, &target, '?', 0) == 0) continue;
            bool twoBytes = target.length == 2;
            ASSERT_EQ(twoBytes ? 1 : 0, c->hostIsLeadByte(c, out[0], id)) << id << " " << unit;
        }
    }
}

TEST(CharsetServices, HtmlEscaping) {
    // Only "<" and a "&" that could open a character reference are escaped;
    // a text that outgrows its target (twice the source unless given) is cut
    // between characters, never inside an entity.
    struct Case {
        CharsetId id;
        Bytes in;
        Bytes out;
        int32_t capacity = -1;
    };
    const Case cases[] = {
        {7, bytesOf("R&D <Q>"), bytesOf("R&D &lt;Q>")},
        {7, bytesOf("&copy;2024"), bytesOf("&amp;copy;2024")},
        {7, bytesOf("&amp"), bytesOf("&amp;amp")},
        {7, bytesOf("a&#60;b"), bytesOf("a&amp;#60;b")},
        {7, bytesOf("&notit"), bytesOf("&amp;notit")},
        {7, bytesOf("&x1;"), bytesOf("&amp;x1;")},
        {7, bytesOf("a<b>&\"c'\xE9"), bytesOf("a&lt;b>&\"c'\xE9")},
        {7, bytesOf("<<<"), bytesOf("&lt;")},
        {53, bytesOf("<<x\xC3\xA9"), bytesOf("&lt;&lt;x")},  // no half character at the cut
        {1, {'<', '<', 'x', 0x93, 0xFA}, bytesOf("&lt;&lt;x")},
        {51, utf16("<\u00e9"), utf16("&lt;")},
        {51, utf16("Q&A&#"), utf16("Q&A&amp;#"), 40},
        {46, {0x4C, 0x81}, {0x50, 0x93, 0xA3, 0x5E}},  // EBCDIC "<a", cut after "&lt;"
        {55,
         {0x1B, '$', 'B', '<', '!', 0x1B, '(', 'B', '<'},
         {0x1B, '$', 'B', '<', '!', 0x1B, '(', 'B', '&', 'l', 't', ';'}},
        {57, {0x0E, '<', '!', 0x0F, '&', '#'}, {0x0E, '<', '!', 0x0F, '&', 'a', 'm', 'p', ';', '#'}},
        {7, {}, {}},
    };
    tnefhost::PosixHost host;
    HostContext* c = host.context();
    for (const Case& test : cases) {
        SCOPED_TRACE(std::string(test.in.begin(), test.in.end()).substr(0, 20));
        c->currentCharset = test.id;
        HostText source{test.in.data(), static_cast<int32_t>(test.in.size())};
        int32_t capacity = test.capacity >= 0 ? test.capacity : 2 * source.length;
        HostTextBuffer measure{nullptr, 0};
        EXPECT_EQ(1, c->hostTransformText(c, &source, &measure, 0));
        if (measure.length <= capacity) {
            EXPECT_EQ(static_cast<int32_t>(test.out.size()), measure.length);
        }

        Bytes written(static_cast<size_t>(capacity) + 1, 0xEE);
        HostTextBuffer target{written.data(), capacity};
        EXPECT_EQ(1, c->hostTransformText(c, &source, &target, 0));
        EXPECT_EQ(test.out, Bytes(written.begin(), written.begin() + target.length)) << test.id;
        EXPECT_EQ(0xEE, written.back());
    }
}

}  // namespace
