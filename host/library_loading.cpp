// hostLoadLibrary and hostGetProcAddress: a library linked into the program
// (HostOptions::linkedLibraries) is found first; otherwise dlopen and dlsym.
// A Windows style name "NAME.dll" is looked for as libNAME.so in the host's
// library folder, by default the folder of the loaded module.
#include <dlfcn.h>

#include <string>
#include <strings.h>

#include "host/posix_host.h"
#include "reader/host.h"

namespace tnefhost {

namespace {

std::string sharedObjectName(const std::string& fileName) {
    std::string stem = fileName;
    const std::string dll = ".dll";
    if (stem.size() > dll.size() &&
        strcasecmp(stem.c_str() + stem.size() - dll.size(), dll.c_str()) == 0) {
        stem.resize(stem.size() - dll.size());
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

const std::vector<LinkedLibrary>& linkedLibraries(HostContext* host) {
    return PosixHost::fromContext(host)->options().linkedLibraries;
}

// The linked library that `handle` stands for, or null for a dlopen handle.
const LinkedLibrary* linkedLibrary(HostContext* host, void* handle) {
    for (const LinkedLibrary& library : linkedLibraries(host)) {
        if (handle == &library) return &library;
    }
    return nullptr;
}

void* loadFile(HostContext* host, const char* fileName) {
    std::string name = sharedObjectName(fileName);
    std::string folder = PosixHost::fromContext(host)->options().libraryDir;
    if (folder.empty()) folder = moduleFolder();
    void* loaded = nullptr;
    if (!folder.empty()) loaded = dlopen((folder + "/" + name).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (loaded == nullptr) loaded = dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
    return loaded;
}

}  // namespace

void hostInstallLibraryServices(HostContext* context) {
    context->hostLoadLibrary = [](HostContext* host, const char* fileName,
                                  void** handle) -> int32_t {
        if (fileName == nullptr || handle == nullptr) return 0;
        *handle = nullptr;
        for (const LinkedLibrary& library : linkedLibraries(host)) {
            if (strcasecmp(library.fileName.c_str(), fileName) == 0) {
                *handle = const_cast<LinkedLibrary*>(&library);
                return 1;
            }
        }
        *handle = loadFile(host, fileName);
        return *handle != nullptr ? 1 : 0;
    };
    context->hostGetProcAddress = [](HostContext* host, void* handle,
                                     const char* entryName) -> void* {
        if (handle == nullptr || entryName == nullptr) return nullptr;
        if (const LinkedLibrary* library = linkedLibrary(host, handle)) {
            for (const auto& [name, entry] : library->entries) {
                if (name == entryName) return entry;
            }
            return nullptr;
        }
        return dlsym(handle, entryName);
    };
}

}  // namespace tnefhost
