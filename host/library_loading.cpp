// hostLoadLibrary and hostGetProcAddress over dlopen and dlsym. A Windows
// style name "NAME.dll" is looked for as libNAME.so in the host's library
// folder, by default the folder of the loaded module.
#include <dlfcn.h>

#include <string>

#include "host/posix_host.h"
#include "reader/host.h"

namespace tnefhost {

namespace {

std::string sharedObjectName(const std::string& fileName) {
    std::string stem = fileName;
    const std::string dll = ".dll";
    if (stem.size() > dll.size()) {
        std::string tail = stem.substr(stem.size() - dll.size());
        for (char& ch : tail) ch = static_cast<char>(tolower(static_cast<unsigned char>(ch)));
        if (tail == dll) stem.resize(stem.size() - dll.size());
    }
    return "lib" + stem + ".so";
}

// The folder of the shared object that holds the module's export, if loaded.
std::string moduleFolder() {
    void* symbol = dlsym(RTLD_DEFAULT, "tnefGetContainerReaderInterfaceEx");
    Dl_info info{};
    if (symbol == nullptr || dladdr(symbol, &info) == 0 || info.dli_fname == nullptr) return {};
    std::string path = info.dli_fname;
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

}  // namespace

void hostInstallLibraryServices(HostContext* context) {
    context->hostLoadLibrary = [](HostContext* host, const char* fileName,
                                  void** handle) -> int32_t {
        if (fileName == nullptr || handle == nullptr) return 0;
        std::string name = sharedObjectName(fileName);
        std::string folder = PosixHost::fromContext(host)->options().libraryDir;
        if (folder.empty()) folder = moduleFolder();
        void* loaded = nullptr;
        if (!folder.empty()) loaded = dlopen((folder + "/" + name).c_str(), RTLD_NOW | RTLD_LOCAL);
        if (loaded == nullptr) loaded = dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
        *handle = loaded;
        return loaded != nullptr ? 1 : 0;
    };
    context->hostGetProcAddress = [](HostContext*, void* handle, const char* entryName) -> void* {
        if (handle == nullptr || entryName == nullptr) return nullptr;
        return dlsym(handle, entryName);
    };
}

}  // namespace tnefhost
