#include "bench/stream_files.h"

#include <stdlib.h>
#include <sys/statvfs.h>

#include <filesystem>
#include <map>
#include <memory>
#include <utility>

namespace tnefbench {

namespace {

namespace fs = std::filesystem;

// Room left on the disk after a new file, so that the benches never fill it.
constexpr uint64_t kSpareBytes = uint64_t{1} << 30;

class ScratchFolder {
public:
    ScratchFolder() {
        const char* tmp = ::getenv("TMPDIR");
        std::string pattern = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") +
                              "/tnef-bench-XXXXXX";
        if (::mkdtemp(pattern.data()) != nullptr) path_ = pattern;
    }
    ~ScratchFolder() {
        if (path_.empty()) return;
        std::error_code ec;
        fs::remove_all(path_, ec);
    }
    const std::string& path() const { return path_; }

    std::map<std::pair<uint64_t, bool>, StreamFile> streams;

private:
    std::string path_;
};

ScratchFolder& scratch() {
    static ScratchFolder folder;
    return folder;
}

uint64_t freeBytes(const std::string& path) {
    struct statvfs info {};
    if (::statvfs(path.c_str(), &info) != 0) return 0;
    return static_cast<uint64_t>(info.f_bavail) * info.f_frsize;
}

}  // namespace

std::string scratchPath(const std::string& name) {
    return scratch().path() + "/" + name;
}

const StreamFile* streamFile(uint64_t fileBytes, bool sparse, std::string* error) {
    ScratchFolder& folder = scratch();
    if (folder.path().empty()) {
        *error = "cannot make a scratch folder";
        return nullptr;
    }
    auto key = std::make_pair(fileBytes, sparse);
    if (auto it = folder.streams.find(key); it != folder.streams.end()) return &it->second;
    if (!sparse && freeBytes(folder.path()) < fileBytes + kSpareBytes) {
        *error = "not enough free disk space in " + folder.path() + " for a stream of " +
                 std::to_string(fileBytes) + " bytes";
        return nullptr;
    }
    StreamFile file;
    file.path = folder.path() + "/stream-" + std::to_string(fileBytes) + (sparse ? "-sparse" : "") +
                ".tnef";
    BigStreamPlan plan;
    plan.fileBytes = fileBytes;
    plan.sparse = sparse;
    if (!writeBigStream(file.path, plan, &file.layout, error)) return nullptr;
    return &folder.streams.emplace(key, std::move(file)).first->second;
}

}  // namespace tnefbench
