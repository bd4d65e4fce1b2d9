// Library loading, format detection and the objects the POSIX host makes.
// (What the scratch and wrapper objects read and write, and that the output
// stays open beneath its wrapper, the module's extractions check.)
#include <gtest/gtest.h>

#include <cstring>

#include "host/format_detection.h"
#include "host/io_objects.h"
#include "host/posix_host.h"
#include "tests/support/cfb_writer.h"

namespace tneftest {
namespace {

using tnefhost::IoOp;
using tnefhost::MemoryIo;
using tnefhost::PosixHost;

// hostDetectFormat on `bytes`: the result and the format number.
std::pair<int32_t, int32_t> detect(HostContext* host, IoObject* io) {
    uint8_t probe[kFormatProbeSize] = {};
    std::memset(probe, 0xFF, 8);
    std::memcpy(probe + kFormatProbeIoOffset, &io, sizeof io);
    uint8_t format[16] = {};
    int32_t result = host->hostDetectFormat(host, probe, format);
    int32_t number = 0;
    std::memcpy(&number, format + 4, 4);
    return {result, number};
}

TEST(HostServices, FormatDetection) {
    PosixHost host;
    struct Case {
        Bytes head;
        int32_t format;
    };
    // A compound file, one of the other signatures, HTML, and what is none.
    const Case cases[] = {
        {buildCfb({{"Contents", bytesOf("x")}}), kFormatOleStorage},
        {bytesOf("%PDF-1.7\n"), tnefhost::kFormatPdf},
        {bytesOf("  \r\n<!DOCTYPE html><html>"), tnefhost::kFormatHtml},
        {bytesOf("<HTML>"), tnefhost::kFormatHtml},
        {bytesOf("plain words"), tnefhost::kFormatBinary},
        {{}, tnefhost::kFormatBinary},
        {Bytes{0xD0, 0xCF, 0x11}, tnefhost::kFormatBinary},
    };
    for (const Case& c : cases) {
        MemoryIo io(c.head);
        io.io()->open(io.io());
        auto [result, number] = detect(host.context(), io.io());
        EXPECT_EQ(result, 1);
        EXPECT_EQ(number, c.format);
        EXPECT_EQ(io.io()->tell(io.io()), 0) << "left at the start";
    }
    MemoryIo unreadable(bytesOf("%PDF"));
    unreadable.failOperation(IoOp::kSeek, 1);
    EXPECT_NE(detect(host.context(), unreadable.io()).first, 1);
    EXPECT_NE(detect(host.context(), nullptr).first, 1);
}

// Libraries load from the library folder, unless one of the same name (in
// any case) is linked into the program; entries keep their case.
TEST(HostServices, LibraryLoading) {
    int entry = 0;
    tnefhost::HostOptions options;
    options.libraryDir = TNEF_BUILD_DIR;
    PosixHost fromFiles(options);
    options.linkedLibraries = {{"ZDOLEFIO.DLL", {{"GetOLEInterface", &entry}}}};
    PosixHost linked(options);
    for (HostContext* c : {fromFiles.context(), linked.context()}) {
        void* handle = nullptr;
        ASSERT_EQ(c->hostLoadLibrary(c, "zdolefio.dll", &handle), 1);
        void* found = c->hostGetProcAddress(c, handle, "GetOLEInterface");
        EXPECT_TRUE(c == linked.context() ? found == &entry : found != nullptr);
        EXPECT_EQ(c->hostGetProcAddress(c, handle, c == linked.context() ? "getoleinterface" : "NoSuchEntry"),
                  nullptr);
    }
    HostContext* c = fromFiles.context();
    void* missing = &c;
    EXPECT_EQ(c->hostLoadLibrary(c, "nosuchlibrary.dll", &missing), 0);
    EXPECT_EQ(missing, nullptr);
}

// Objects the host makes and objects a test joins share one count of calls:
// the call it names fails, whichever object takes it, and only that one.
TEST(HostServices, SharedIoFaultsSpanObjects) {
    tnefhost::SharedIoFaults faults{.calls = 0, .failAt = 4};
    tnefhost::HostOptions options;
    options.madeIoFaults = &faults;
    PosixHost host(options);
    HostContext* c = host.context();
    MemoryIo output;
    output.joinFaults(&faults);
    IoObject* scratch = c->hostCreateTempIo(c, nullptr, "w+b");
    IoObject* wrapper = c->hostWrapOutputIo(c, output.io());
    EXPECT_EQ(scratch->open(scratch), 1);                  // 1
    EXPECT_EQ(output.io()->open(output.io()), 1);          // 2
    // 3 for the wrapper, 4 for the output below it, which fails through.
    EXPECT_EQ(wrapper->write(wrapper, "ab", 2), 0);
    EXPECT_EQ(output.text(), "");
    EXPECT_EQ(scratch->write(scratch, "cd", 2), 1);        // 5
    EXPECT_EQ(faults.calls, 5u);
    scratch->destroy(scratch);
    wrapper->destroy(wrapper);
    EXPECT_EQ(c->hostWrapOutputIo(c, nullptr), nullptr);
}

}  // namespace
}  // namespace tneftest
