#include "mail/replacement_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace tnefmail {

namespace {

std::string folderOf(const std::string& path) {
    std::string folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

void syncFolder(const std::string& folder) {
    int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    ::fsync(fd);
    ::close(fd);
}

}  // namespace

ReplacementFile::~ReplacementFile() {
    if (fd_ >= 0) ::close(fd_);
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

bool ReplacementFile::create(const std::string& target, std::string* error) {
    target_ = target;
    std::string pattern = folderOf(target) + "/." +
                          std::filesystem::path(target).filename().string() + ".unwrap-XXXXXX";
    fd_ = ::mkostemp(pattern.data(), O_CLOEXEC);
    if (fd_ < 0) {
        *error = "cannot create a new file in " + folderOf(target) + ": " + std::strerror(errno);
        return false;
    }
    temporary_ = pattern;
    struct stat old {};
    mode_t mask = ::umask(0);
    ::umask(mask);
    mode_t mode = 0666 & ~mask;
    if (::stat(target.c_str(), &old) == 0) mode = old.st_mode & 07777;
    ::fchmod(fd_, mode);
    return true;
}

bool ReplacementFile::commit(const std::string& finalPath, std::string* error) {
    if (::fsync(fd_) != 0 || ::close(fd_) != 0) {
        fd_ = -1;
        *error = std::string("cannot write ") + temporary_ + ": " + std::strerror(errno);
        return false;
    }
    fd_ = -1;
    if (::rename(temporary_.c_str(), finalPath.c_str()) != 0) {
        *error = "cannot rename the new file to " + finalPath + ": " + std::strerror(errno);
        return false;
    }
    temporary_.clear();
    if (finalPath != target_) ::unlink(target_.c_str());
    syncFolder(folderOf(finalPath));
    return true;
}

}  // namespace tnefmail
