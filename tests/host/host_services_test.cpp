// Library loading and the objects the POSIX host makes.
// (What the scratch and wrapper objects read and write, and that the output
// stays open beneath its wrapper, the module's extractions check.)
#include <gtest/gtest.h>

#include "host/io_objects.h"
#include "host/posix_host.h"

namespace tneftest {
namespace {

using tnefhost::MemoryIo;
using tnefhost::PosixHost;

// A library linked into the program is found first, by its name in any case;
// its entries keep their case. (Loading from the library folder is what every
// extraction of an OLE object does.)
TEST(HostServices, LinkedLibraries) {
    int entry = 0;
    tnefhost::HostOptions options;
    options.linkedLibraries = {{"ZDOLEFIO.DLL", {{"GetOLEInterface", &entry}}}};
    PosixHost host(options);
    HostContext* c = host.context();
    void* handle = nullptr;
    ASSERT_EQ(c->hostLoadLibrary(c, "zdolefio.dll", &handle), 1);
    EXPECT_EQ(c->hostGetProcAddress(c, handle, "GetOLEInterface"), &entry);
    EXPECT_EQ(c->hostGetProcAddress(c, handle, "getoleinterface"), nullptr);
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
