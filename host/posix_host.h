// The POSIX host: a HostContext with real services, handed to the module by
// the tool and the tests.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/io_objects.h"
#include "host/memory.h"
#include "reader/host.h"

namespace tnefhost {

class CharsetCodecCache;  // host/charset_transcoder.h

// A library linked into the program rather than loaded from a file (the
// WebAssembly build has no dlopen): hostLoadLibrary finds it by the name the
// module asks for, and hostGetProcAddress hands out its entries.
struct LinkedLibrary {
    std::string fileName;  // "zdolefio.dll"; ASCII case ignored
    std::vector<std::pair<std::string, void*>> entries;
};

struct HostOptions {
    // Memory of the context's allocator; the host makes its own when null.
    HostMemory* memory = nullptr;
    // Folder where hostLoadLibrary looks for libNAME.so; empty: the folder of
    // the loaded module, then the dynamic loader's search path.
    std::string libraryDir;
    // Libraries looked for here before any file is loaded.
    std::vector<LinkedLibrary> linkedLibraries;
    // The charset hostSetDefaultCharset sets.
    CharsetId defaultCharset = kCharsetWindows1252;
    // Error lines go to stderr (prefixed with `logPrefix`) as well as to
    // logLines().
    bool logToStderr = false;
    std::string logPrefix;
    // When set, the objects of hostCreateTempIo and hostWrapOutputIo count
    // their calls here, and fail the call it names.
    SharedIoFaults* madeIoFaults = nullptr;
};

class PosixHost {
public:
    explicit PosixHost(HostOptions options = {});
    PosixHost(const PosixHost&) = delete;
    PosixHost& operator=(const PosixHost&) = delete;

    HostContext* context() { return &record_.context; }
    HostMemory& memory() { return *memory_; }
    const HostOptions& options() const { return options_; }
    const std::vector<std::string>& logLines() const { return logLines_; }
    void clearLog() { logLines_.clear(); }
    void setLogPrefix(std::string prefix) { options_.logPrefix = std::move(prefix); }

    // Leaves a service slot empty, as a host that lacks it would.
    void removeTransformText() { record_.context.hostTransformText = nullptr; }

    static PosixHost* fromContext(HostContext* context);

    // The iconv descriptors the charset services keep open for this context.
    CharsetCodecCache& charsetCodecs();

    void log(const char* line);

private:
    struct Record {
        HostContext context;
        PosixHost* self;
    } record_;
    HostOptions options_;
    std::unique_ptr<HostMemory> ownMemory_;
    HostMemory* memory_;
    std::vector<std::string> logLines_;
    std::shared_ptr<CharsetCodecCache> charsetCodecs_;
};

// Service groups, each in its own file.
void hostInstallCharsetServices(HostContext* context);
void hostInstallLibraryServices(HostContext* context);
void hostInstallIoServices(HostContext* context);
void hostInstallFormatDetection(HostContext* context);

}  // namespace tnefhost
