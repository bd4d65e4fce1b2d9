// Finding and loading the reader module. The client reaches the module only
// through the one exported function and the table it fills, as any host
// that loads it would.
#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <vector>

#include "client/tnef_client.h"

namespace tnefclient {

namespace {

namespace fs = std::filesystem;

constexpr const char* kModuleFile = "libtnefreader.so";
constexpr const char* kExportName = "tnefGetContainerReaderInterfaceEx";
// Where an installation keeps the module, from the folder above bin/.
constexpr const char* kInstalledFolder = "lib/tnef-reader";

fs::path executableFolder() {
    std::error_code ec;
    fs::path self = fs::read_symlink("/proc/self/exe", ec);
    return ec ? fs::path() : self.parent_path();
}

std::vector<std::string> candidates() {
    std::vector<std::string> paths;
    fs::path exe = executableFolder();
    if (!exe.empty()) {
        paths.push_back((exe.parent_path() / kModuleFile).string());
        paths.push_back((exe / kModuleFile).string());
        paths.push_back((exe.parent_path() / kInstalledFolder / kModuleFile).string());
    }
    if (const char* env = std::getenv("TNEF_MODULE"); env != nullptr && *env != '\0') {
        std::error_code ec;
        fs::path given(env);
        paths.push_back(fs::is_directory(given, ec) ? (given / kModuleFile).string() : given.string());
    }
    paths.emplace_back(kModuleFile);  // the dynamic loader's own search
    return paths;
}

struct LoadState {
    ReaderModule module;
    bool loaded = false;
    std::string error;
};

void loadOnce(LoadState& state) {
    std::string tried;
    for (const std::string& candidate : candidates()) {
        bool bare = candidate.find('/') == std::string::npos;
        if (!bare && ::access(candidate.c_str(), R_OK) != 0) continue;
        void* handle = dlopen(candidate.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (handle == nullptr) {
            const char* why = dlerror();
            tried += "\n  " + candidate + ": " + (why != nullptr ? why : "not loadable");
            continue;
        }
        auto entry = reinterpret_cast<TnefGetInterfaceFn>(dlsym(handle, kExportName));
        if (entry == nullptr) {
            tried += "\n  " + candidate + ": no " + kExportName;
            dlclose(handle);
            continue;
        }
        entry(&state.module.table);
        Dl_info info{};
        std::string where = candidate;
        if (dladdr(reinterpret_cast<void*>(entry), &info) != 0 && info.dli_fname != nullptr) {
            where = info.dli_fname;
        }
        std::error_code ec;
        fs::path resolved = fs::absolute(where, ec);
        state.module.path = ec ? where : resolved.string();
        state.module.folder = fs::path(state.module.path).parent_path().string();
        state.loaded = true;
        return;  // the module stays loaded for the life of the process
    }
    state.error = std::string("cannot load the reader module ") + kModuleFile +
                  " (set TNEF_MODULE to its path)" + tried;
}

}  // namespace

const ReaderModule* ReaderModule::load(std::string* error) {
    static LoadState state;
    static std::once_flag once;
    std::call_once(once, [] { loadOnce(state); });
    if (!state.loaded && error != nullptr) *error = state.error;
    return state.loaded ? &state.module : nullptr;
}

ReaderModule ReaderModule::linked(TnefGetInterfaceFn entry, std::string folder) {
    ReaderModule module;
    entry(&module.table);
    module.folder = std::move(folder);
    return module;
}

std::unique_ptr<tnefhost::PosixHost> makeHost(const ReaderModule& module,
                                              const std::string& logPrefix) {
    tnefhost::HostOptions options;
    options.libraryDir = module.folder;
    options.logToStderr = true;
    options.logPrefix = logPrefix;
    return std::make_unique<tnefhost::PosixHost>(options);
}

}  // namespace tnefclient
