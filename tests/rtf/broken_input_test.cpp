// Documents that are cut short, unbalanced, nested too deep or no RTF at
// all, inputs and outputs that fail: each gives what was read and a status
// that says what happened.
#include <gtest/gtest.h>

#include "host/io_objects.h"
#include "rtf/io_object_adapters.h"
#include "tests/rtf/rtf_support.h"

namespace {

using tnefrtf::ConversionStatus;
using tnefrtf::OutputForm;

TEST(BrokenInput, WhatWasReadAndAStatus) {
    const std::string deep = "{\\rtf1 a" + std::string(300, '{') + "b" + std::string(300, '}') + "c}";
    const std::string nested = "{\\rtf1 a" + std::string(250, '{') + "b" + std::string(250, '}') + "c}";
    struct Case { std::string rtf; std::string text; ConversionStatus status; };
    const Case cases[] = {
        {"{\\rtf1 abc", "abc", ConversionStatus::kTruncated},
        {"{\\rtf1 a{\\b b\\pa", "ab", ConversionStatus::kTruncated},
        {"{\\rtf1\\ansicpg932 a\\'82", "a\uFFFD", ConversionStatus::kTruncated},
        {"{\\rtf1\\u-10179", "\uFFFD", ConversionStatus::kTruncated},
        {"{\\rtf1{\\field{\\*\\fldinst HYPERLINK x}{\\fldrslt y", "y", ConversionStatus::kTruncated},
        {"{\\rtf1 a}}b{c}", "a", ConversionStatus::kComplete},  // nothing after the document counts
        {"{\\rtf1 a{\\*\\blip\\bin3 }{}}b}", "ab", ConversionStatus::kComplete},
        {nested, "abc", ConversionStatus::kComplete},
        {deep, "ac", ConversionStatus::kComplete},  // beyond the depth bound groups hold nothing
        {"\xef\xbb\xbf{\\RTF1 x}", "x", ConversionStatus::kNotRtf},
        {"", "", ConversionStatus::kNotRtf},
    };
    for (const Case& c : cases) {
        rtftest::Converted converted = rtftest::convert(c.rtf, OutputForm::kText);
        EXPECT_EQ(converted.result.status, c.status) << c.rtf;
        EXPECT_EQ(converted.result.bytesRead, c.rtf.size());
        EXPECT_EQ(converted.output, c.text) << c.rtf;
    }
}

TEST(BrokenInput, FailingInputsAndOutputs) {
    // Enough text for several reads of the input and writes of the output.
    std::string body;
    for (int i = 0; i < 40000; ++i) body += "word\\par ";
    const std::string rtf = "{\\rtf1 " + body + "}";
    struct Case { uint64_t failRead; uint64_t failWrite; ConversionStatus status; };
    const Case cases[] = {
        {0, 0, ConversionStatus::kComplete},
        {2, 0, ConversionStatus::kInputFailed},
        {0, 2, ConversionStatus::kOutputFailed},
        {2, 1, ConversionStatus::kOutputFailed},  // the first write comes before the second read
    };
    for (const Case& c : cases) {
        tnefhost::MemoryIo input(std::vector<uint8_t>(rtf.begin(), rtf.end()));
        input.io()->open(input.io());
        if (c.failRead != 0) input.failOperation(tnefhost::IoOp::kRead, c.failRead);
        tnefhost::MemoryIo output;
        output.io()->open(output.io());
        if (c.failWrite != 0) output.failOperation(tnefhost::IoOp::kWrite, c.failWrite);
        tnefrtf::IoObjectSink sink(output.io());
        tnefrtf::ConversionResult result = tnefrtf::convertRtf(input.io(), OutputForm::kText, sink);
        EXPECT_EQ(result.status, c.status) << c.failRead << " " << c.failWrite;
        EXPECT_EQ(result.bytesRead == rtf.size(), c.status == ConversionStatus::kComplete);
        EXPECT_EQ(output.text().size() == 40000u * 6, c.status == ConversionStatus::kComplete);
    }
    tnefrtf::StringSink sink;
    EXPECT_EQ(tnefrtf::convertRtf(nullptr, OutputForm::kText, sink).status, ConversionStatus::kInputFailed);
}

}  // namespace
