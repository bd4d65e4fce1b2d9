#include "cli/pending_file.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

namespace tnefcli {

namespace {

constexpr const char* kTemplate = ".tnef-reader-XXXXXX.part";
constexpr int kSuffixLength = 5;  // ".part"

// Renames without replacing an existing file; link + unlink where the file
// system lacks the no-replace rename.
bool renameNoReplace(const std::string& from, const std::string& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS) return false;
    if (::link(from.c_str(), to.c_str()) != 0) return false;
    ::unlink(from.c_str());
    return true;
}

}  // namespace

unsigned newFileMode() {
    static const unsigned mode = [] {
        mode_t mask = ::umask(0);
        ::umask(mask);
        return static_cast<unsigned>(0666 & ~mask);
    }();
    return mode;
}

std::unique_ptr<PendingFile> PendingFile::create(const std::filesystem::path& folder,
                                                 std::string* error) {
    std::string pattern = (folder / kTemplate).string();
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    int fd = ::mkostemps(name.data(), kSuffixLength, O_CLOEXEC);
    if (fd < 0) {
        *error = "cannot create a file in " + folder.string() + ": " + std::strerror(errno);
        return nullptr;
    }
    int kept = ::fcntl(fd, F_DUPFD_CLOEXEC, 0);
    if (kept < 0) {
        *error = std::string("cannot duplicate a descriptor: ") + std::strerror(errno);
        ::close(fd);
        ::unlink(name.data());
        return nullptr;
    }
    ::fchmod(fd, newFileMode());
    return std::unique_ptr<PendingFile>(new PendingFile(name.data(), fd, kept));
}

PendingFile::PendingFile(std::filesystem::path temporary, int fd, int keptFd)
    : temporary_(std::move(temporary)),
      output_(tnefhost::FileIo::adopt(fd, tnefhost::FileIo::Mode::kWrite)),
      writer_(std::make_unique<tnefclient::WriteBehindIo>(*output_)),
      keptFd_(keptFd) {}

PendingFile::~PendingFile() {
    writer_.reset();
    output_.reset();
    if (keptFd_ >= 0) ::close(keptFd_);
    if (!committed_) ::unlink(temporary_.c_str());
}

void PendingFile::finish() {
    if (writer_->isOpen()) io()->close(io());
}

int64_t PendingFile::bytes() const {
    struct stat info {};
    return ::fstat(keptFd_, &info) == 0 ? static_cast<int64_t>(info.st_size) : -1;
}

std::string PendingFile::head(size_t count) const {
    std::string out(count, '\0');
    ssize_t n = ::pread(keptFd_, out.data(), count, 0);
    out.resize(n > 0 ? static_cast<size_t>(n) : 0);
    return out;
}

bool PendingFile::commit(const std::filesystem::path& target, bool overwrite, std::string* error) {
    finish();
    if (writer_->failed()) {
        *error = "cannot write " + target.string() + ": a write to the file failed";
        return false;
    }
    bool renamed = overwrite ? ::rename(temporary_.c_str(), target.c_str()) == 0
                             : renameNoReplace(temporary_.string(), target.string());
    if (!renamed) {
        *error = errno == EEXIST ? target.string() + " exists (use --overwrite to replace it)"
                                 : "cannot write " + target.string() + ": " + std::strerror(errno);
        return false;
    }
    committed_ = true;
    return true;
}

}  // namespace tnefcli
