// The mail reader and unwrap on arbitrary bytes: the input is recognised,
// parsed as a message or an mbox, its TNEF parts decoded, opened and
// converted, and the mail written again. Besides crashes, sanitizer reports
// and leaks, a finding is mail that comes out changed although none of its
// TNEF parts was replaced: such mail must come out byte for byte.
#include <dlfcn.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "client/tnef_client.h"
#include "fuzz/fuzz_finding.h"
#include "mail/mail_library.h"
#include "mail/unwrap.h"

namespace {

namespace fs = std::filesystem;

struct Fixture {
    tnefmail::MailLibrary gmime;
    const tnefclient::ReaderModule* module = nullptr;
    std::unique_ptr<tnefhost::PosixHost> host;
    fs::path folder;
};

Fixture* fixture = nullptr;

std::string slurp(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    dlopen(TNEF_BUILD_DIR "/libzdolefio.so", RTLD_NOW | RTLD_NODELETE);
    setenv("TNEF_MODULE", TNEF_BUILD_DIR, 0);
    static Fixture instance;
    std::string error;
    instance.module = tnefclient::ReaderModule::load(&error);
    tnefuzz::failIf(instance.module == nullptr, "the module can't be loaded: " + error);
    instance.host = tnefclient::makeHost(*instance.module, "fuzz");
    // As in fuzz_module: a hostile size may ask the host for up to 2 GiB.
    instance.host->memory().refuseAbove(tnefuzz::kLargestAllocation);
    instance.folder = fs::temp_directory_path() / ("fuzz-mail-" + std::to_string(getpid()));
    fs::create_directories(instance.folder);
    fixture = &instance;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fs::path in = fixture->folder / "in", out = fixture->folder / "out";
    std::ofstream(in, std::ios::binary).write(reinterpret_cast<const char*>(data),
                                              static_cast<std::streamsize>(size));
    fs::remove(out);
    tnefmail::UnwrapRequest request;
    request.input = in.string();
    request.output = out.string();
    tnefmail::UnwrapReport report = tnefmail::unwrapMail(*fixture->module, fixture->host->context(), request);
    if (!report.error && report.replaced == 0) {
        tnefuzz::failIf(slurp(out) != std::string(reinterpret_cast<const char*>(data), size),
                        "mail without an unwrapped TNEF part came out changed");
    }
    return 0;
}
