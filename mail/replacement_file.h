// A file written anew beside the one it replaces: a temporary name in the
// same folder, synced to disk, then renamed over the target, so that the
// target is always either the old file or the whole new one. Dropped
// without commit, the temporary file is removed.
#pragma once

#include <string>

namespace tnefmail {

class ReplacementFile {
public:
    ReplacementFile() = default;
    ~ReplacementFile();  // removes the temporary file unless committed
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    // Creates the temporary file beside `target`; false with `error`.
    bool create(const std::string& target, std::string* error);
    int fd() const { return fd_; }
    // Syncs the new file, renames it to `finalPath` (the target, or a new
    // name for it in the same folder) and removes the target when the name
    // changed. False with `error`; the target is then as it was.
    bool commit(const std::string& finalPath, std::string* error);

private:
    std::string target_;
    std::string temporary_;
    int fd_ = -1;
};

}  // namespace tnefmail
