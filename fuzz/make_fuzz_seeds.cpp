// Writes the seed corpora of the fuzz targets, one folder per target, from
// our own writers: make_fuzz_seeds DIR.
#include <gmime/gmime.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "tests/support/cfb_writer.h"
#include "tests/support/lzfu_compressor.h"
#include "tests/support/rich_streams.h"

namespace {

using tneftest::Bytes;
namespace fs = std::filesystem;

void writeSeeds(const fs::path& folder, const std::vector<Bytes>& seeds) {
    fs::create_directories(folder);
    for (size_t i = 0; i < seeds.size(); ++i) {
        std::ofstream out(folder / ("seed-" + std::to_string(i)), std::ios::binary);
        out.write(reinterpret_cast<const char*>(seeds[i].data()), static_cast<std::streamsize>(seeds[i].size()));
    }
}

std::vector<Bytes> moduleSeeds() {
    using namespace tneftest;
    std::vector<Bytes> seeds;
    for (const RichStream& stream : richStreams()) seeds.push_back(stream.bytes);
    seeds.push_back(buildMessage({.body = "short", .props = {Prop::string8(kTagSubject8, "s")}}));
    return seeds;
}

std::vector<Bytes> rtfSeeds() {
    using namespace tneftest;
    return {compressRtf(sampleRtfText(1, 200)), compressRtf(sampleRtfText(2, 5000)),
            storeRtfUncompressed(sampleRtfText(3, 100)), compressRtf({}), bytesOf("{\\rtf1 short}")};
}

std::vector<Bytes> rtfReaderSeeds() {
    using namespace tneftest;
    std::vector<Bytes> seeds;
    for (RtfKind kind : {RtfKind::kHtmlEncapsulated, RtfKind::kTextHeavy, RtfKind::kFormatHeavy}) {
        seeds.push_back(bytesOf(rtfDocument(kind, 3000)));
    }
    for (const char* document : {
             "{\\rtf1\\ansi\\fromtext \\deff0{\\fonttbl{\\f0 A;}}Hi\\par there\\line x}",
             "{\\rtf1\\ansi\\ansicpg932{\\fonttbl{\\f1\\fcharset204 B;}}\\'82\\'a0\\'83e\\f1\\'c0"
             "\\uc2\\u-10179\\'3f\\'3f\\u-8704??{\\upr{a}{\\*\\ud{b}}}\\ansicpg65001 \\'e2\\'82\\'ac}",
             "{\\rtf1{\\field{\\*\\fldinst HYPERLINK \\\\l \"x\"}{\\fldrslt{\\b link}}}{\\pntext 1.\\tab}"
             "\\trowd\\cellx1\\pard\\intbl a\\cell\\row{\\pict\\bin4 {}{}}\\v hidden}",
         }) {
        seeds.push_back(bytesOf(document));
    }
    return seeds;
}

std::vector<Bytes> descriptorSeeds() {
    using namespace tneftest;
    return {compObjStream("Package"), compObjStream("Acrobat Document", false),
            ole10NativePackage(OlePackage{}).bytes, ole10NativeBitmap(64), attachDescStream("desc.doc"),
            oleLinkStream(OleLink{}).bytes};
}

std::vector<Bytes> compoundFileSeeds() {
    using namespace tneftest;
    return {buildCfb({{"\x01" "CompObj", compObjStream("Package")},
                      {"\x01" "Ole10Native", ole10NativePackage(OlePackage{}).bytes}}),
            buildCfb({{"Contents", patternBytes(5000)}, {"Workbook", patternBytes(300, 2)}}, CfbOptions(4)),
            buildCfb({{"Package", patternBytes(9000)}, {"CONTENTS", patternBytes(70, 1)}}, CfbOptions(3, 0, true)),
            buildCfb({CfbEntryLayout::emptyStorage("Objects"), {"\x01" "Ole", oleLinkStream(OleLink{}).bytes}})};
}

// Base64 of `bytes` in lines, as mail carries it.
std::string base64(const Bytes& bytes) {
    std::string out(bytes.size() * 2 + 80, '\0');
    int state = 0;
    guint32 save = 0;
    size_t n = g_mime_encoding_base64_encode_close(bytes.data(), bytes.size(),
                                                   reinterpret_cast<unsigned char*>(out.data()), &state, &save);
    out.resize(n);
    return out;
}

std::vector<Bytes> mailSeeds() {
    using namespace tneftest;
    std::string tnef = base64(buildMessage(
        {.body = "mail body",
         .props = {Prop::string8(kTagSubject8, "s"), Prop::string8(kTagBodyHtml8, "<p>hi<img src=cid:i@x></p>")},
         .attachments = {{"a.txt", bytesOf("attached"), {Prop::string8(0x3712001E, "i@x")}}}}));
    std::string head = "From: a@x\nSubject: s\nMIME-Version: 1.0\n";
    std::string tnefPart = "Content-Type: application/ms-tnef; name=\"winmail.dat\"\n"
                           "Content-Transfer-Encoding: base64\n\n" + tnef;
    std::string mixed = head + "Content-Type: multipart/mixed; boundary=\"b\"\n\n--b\n"
                        "Content-Type: text/plain\n\nmail body\n--b\n" + tnefPart + "\n--b--\n";
    std::vector<std::string> texts = {
        head + tnefPart,
        mixed,
        head + "Content-Type: multipart/mixed; boundary=\"o\"\n\n--o\nContent-Type: message/rfc822\n\n" +
            mixed + "\n--o--\n",
        "From a@x Mon Jan  1 00:00:00 2024\n" + head + "\n>From here\n\nFrom b@x Mon Jan  1 00:00:00 2024\n" + mixed,
        head + "Content-Type: text/plain\n\nno TNEF here\n",
    };
    std::vector<Bytes> seeds;
    for (const std::string& text : texts) seeds.push_back(bytesOf(text));
    return seeds;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: make_fuzz_seeds DIR\n";
        return 2;
    }
    fs::path root = argv[1];
    writeSeeds(root / "module", moduleSeeds());
    writeSeeds(root / "rtf_decoder", rtfSeeds());
    writeSeeds(root / "rtf_readers", rtfReaderSeeds());
    writeSeeds(root / "ole_descriptors", descriptorSeeds());
    writeSeeds(root / "compound_file", compoundFileSeeds());
    g_mime_init();
    writeSeeds(root / "mail", mailSeeds());
    g_mime_shutdown();
    return 0;
}
