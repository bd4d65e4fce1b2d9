// unwrap end to end: messages built with GMime around streams from the test
// kit go through the tool, and what comes out is read again by GMime and by
// Python's email package.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "tests/cli/cli_runner.h"
#include "tests/support/lzfu_compressor.h"
#include "tests/mail/mail_kit.h"

namespace tneftest {
namespace {

namespace fs = std::filesystem;

const std::string kBody = "The figures are attached.";
const std::string kPdf = "%PDF-1.4 quarterly figures\n";
const std::string kPng = "\x89PNG\r\n\x1a\n logo bytes";

// A message with text and HTML bodies (or only an RTF body that
// encapsulates text), an attachment with a non-ASCII name, an image the
// HTML shows by cid:, and an embedded message with an attachment of its own.
Bytes richTnef(bool rtfOnly = false) {
    MessageLayout plan;
    plan.body = kBody;
    plan.props = {Prop::string8(kTagSubject8, "Figures"),
                  Prop::string8(kTagBodyHtml8, "<html><body><p>" + kBody +
                                                   "</p><img src=\"cid:logo@x\"></body></html>")};
    plan.attachments.push_back(
        {"report.pdf", bytesOf(kPdf), {Prop::unicode(kTagAttachLongFilename16, "Bericht für März.pdf")}});
    plan.attachments.push_back({"logo.png", bytesOf(kPng), {Prop::string8(0x3712001E, "logo@x")}});
    Bytes inner = noteMessage("Inner", "Inner body", {{"inner.txt", bytesOf("inner attachment"), {}}});
    plan.attachments.push_back(embeddedMessage("Inner", inner));
    if (rtfOnly) {
        plan.body.reset();
        plan.props = {Prop::binary(kTagRtfCompressed,
                                   compressRtf(bytesOf("{\\rtf1\\ansi\\fromtext " + kBody + "\\par}")))};
    }
    return buildMessage(plan);
}

const std::map<std::string, std::string> kAttachments = {
    {"Bericht für März.pdf", kPdf}, {"logo.png", kPng}, {"inner.txt", "inner attachment"}};

// The checks of Python's email package (tests/mail/check_unwrapped.py).
int pythonCheck(const TempDir& dir, const std::string& file) {
    nlohmann::json expect = {{"body", kBody}, {"attachments", nlohmann::json::object()}};
    for (const auto& [name, bytes] : kAttachments) {
        std::string path = writeFile(dir.path() / "attachment", Bytes(bytes.begin(), bytes.end()));
        expect["attachments"][name] = sha256Of(path);
    }
    std::ofstream(dir / "expect.json") << expect.dump();
    std::string command = "python3 '" TNEF_MAIL_CHECKER "' '" + file + "' '" + (dir / "expect.json") + "'";
    return std::system(command.c_str());
}

TEST(Unwrap, EveryShapeOfTnefMailBecomesStandardMime) {
    Bytes tnef = richTnef(), rtfOnly = richTnef(true);
    struct Case {
        const char* what;
        std::function<GRef<GMimeObject>()> body;
        bool related = true;  // the HTML shows logo.png by cid:
    } cases[] = {
        {"single-part TNEF, base64", [&] { return tnefPart(tnef); }},
        // (Every transfer encoding is decoded alike: base64 stands for all.)
        {"text and an application/octet-stream winmail.dat",
         [&] {
             return multipart("mixed", {textPart(kBody + "\n"),
                                        bytesPart("application/octet-stream", tnef,
                                                  GMIME_CONTENT_ENCODING_BASE64, "winmail.dat")});
         }},
        {"TNEF in a forwarded message/rfc822",
         [&] {
             return multipart("mixed", {textPart("See below.\n"),
                                        messagePart(bytesPart("application/vnd.ms-tnef", tnef,
                                                              GMIME_CONTENT_ENCODING_BASE64, "win.dat"))});
         }},
        {"a body stored only as RTF", [&] { return tnefPart(rtfOnly); }, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        TempDir dir;
        std::string in = dir / "in.eml", out = dir / "out.eml";
        std::ofstream(in, std::ios::binary) << messageBytes(c.body());
        ToolRun run = runTool({"unwrap", in, "-o", out});
        ASSERT_EQ(run.exitCode, 0) << run.err;
        // Python's email package checks that no TNEF is left and that the
        // body and each attachment are there once; GMime, how the HTML is held.
        EXPECT_EQ(readBack(readText(out)).related, c.related);
        EXPECT_EQ(pythonCheck(dir, out), 0);
    }
}

TEST(Unwrap, WhatHasNoReadableTnefComesOutByteForByte) {
    GRef<GMimeObject> hi = textPart("Hi\n");
    struct Case {
        const char* what;
        std::string message;
        int exitCode;
    } cases[] = {
        {"no TNEF", messageBytes(multipart("mixed", {hi, bytesPart("application/pdf", bytesOf(kPdf),
                                                                   GMIME_CONTENT_ENCODING_BASE64, "a.pdf")})),
         0},
        {"damaged TNEF",
         messageBytes(multipart("mixed", {hi, tnefPart(damagedStream())})),
         3},
        {"signed TNEF",
         messageBytes(multipart("signed", {tnefPart(richTnef()), bytesPart("application/pgp-signature", bytesOf("sig"),
                                                                             GMIME_CONTENT_ENCODING_7BIT)})),
         3},
        {"not mail at all", "\x01\x02 no header\n\nFrom nowhere\n", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        TempDir dir;
        std::string in = dir / "in.eml";
        std::ofstream(in, std::ios::binary) << c.message;
        ToolRun run = runTool({"unwrap", "-"}, in);
        EXPECT_EQ(run.exitCode, c.exitCode);
        EXPECT_EQ(run.out, c.message);
        EXPECT_EQ(run.err.find("left as it was") != std::string::npos, c.exitCode == 3) << run.err;
    }
}

TEST(Unwrap, MboxInMboxOutKeepsOtherMessagesAndTheirEscapes) {
    std::string plain = mboxEntry("a@example.com", "Subject: plain\n\n>From the past\n");
    std::string tnef = mboxEntry("b@example.com", messageBytes(tnefPart(richTnef())));
    TempDir dir;
    std::string in = dir / "in.mbox";
    std::ofstream(in, std::ios::binary) << plain << tnef << plain;
    ToolRun run = runTool({"unwrap", in});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    ASSERT_GT(run.out.size(), 2 * plain.size());
    EXPECT_EQ(run.out.substr(0, plain.size()), plain);
    EXPECT_EQ(run.out.substr(run.out.size() - plain.size()), plain);
    std::string middle = run.out.substr(plain.size(), run.out.size() - 2 * plain.size());
    EXPECT_EQ(middle.rfind("From b@example.com ", 0), 0u);
    EXPECT_EQ(middle.substr(middle.size() - 2), "\n\n");
    EXPECT_EQ(readBack(middle.substr(middle.find('\n') + 1)).attachments, kAttachments);
}

// Runs the tool under a file size limit of `kib` KiB, so that writing more
// fails as a full disk would.
int runLimited(size_t kib, std::vector<std::string> args) {
    args.insert(args.begin(), {"-c", "ulimit -f " + std::to_string(kib) + "; trap '' XFSZ; exec \"$0\" \"$@\"",
                               TNEF_CLI_PATH});
    return runProgram("bash", args).exitCode;
}

TEST(Unwrap, InPlaceReplacesWholeFilesOrLeavesThemAlone) {
    Bytes big = randomBytes(300 * 1024, 13);
    std::string message = messageBytes(tnefPart(noteMessage("Big", kBody, {{"big.bin", big, {}}})));
    std::string damaged = messageBytes(tnefPart(damagedStream()));
    struct Case {
        const char* what;
        const std::string& content;
        size_t limitKib;  // 0: none
        int exitCode;
        bool rewritten;
    } cases[] = {
        {"readable", message, 0, 0, true},
        {"the new file can't be written whole", message, 360, 2, false},
        {"damaged", damaged, 0, 3, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        TempDir dir;
        std::string file = dir / "msg.eml";
        std::ofstream(file, std::ios::binary) << c.content;
        int code = c.limitKib == 0 ? runTool({"unwrap", "--in-place", file}).exitCode
                                   : runLimited(c.limitKib, {"unwrap", "--in-place", file});
        EXPECT_EQ(code, c.exitCode);
        EXPECT_EQ(filesBelow(dir.path()), std::vector<std::string>{"msg.eml"});
        std::string now = readText(file);
        EXPECT_EQ(now != c.content, c.rewritten);
        if (c.rewritten) {
            EXPECT_EQ(readBack(now).attachments.at("big.bin"), std::string(big.begin(), big.end()));
        }
    }
}

TEST(Unwrap, MaildirFilesAreRewrittenInPlaceWithTheirSizeInTheName) {
    TempDir dir;
    makeMaildir(dir / "box");
    std::string plain = messageBytes(textPart("Hi\n"));
    std::ofstream(dir / "box/new/1.M1.host,S=99:2,") << plain;
    std::ofstream(dir / "box/cur/2.M2.host,S=99:2,S") << messageBytes(tnefPart(richTnef()));
    ToolRun run = runTool({"unwrap", "--in-place", dir / "box"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    std::vector<std::string> files = filesBelow(dir.path() / "box");
    ASSERT_EQ(files.size(), 2u);
    std::string rewritten = (dir.path() / "box" / files[0]).string();
    EXPECT_EQ(files[0], "cur/2.M2.host,S=" + std::to_string(fs::file_size(rewritten)) + ":2,S");
    EXPECT_EQ(readBack(readText(rewritten)).attachments, kAttachments);
    EXPECT_EQ(files[1], "new/1.M1.host,S=99:2,");
    EXPECT_EQ(readText(dir / "box/new/1.M1.host,S=99:2,"), plain);
}

}  // namespace
}  // namespace tneftest
