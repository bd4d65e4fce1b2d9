// A file being written: made under a temporary name inside the target
// folder and renamed to its real name only once it is complete, so that a
// failure never leaves a half-written file behind.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "client/buffered_io.h"
#include "host/io_objects.h"

namespace tnefcli {

class PendingFile {
public:
    // A new empty temporary file in `folder`; null with `error` set when it
    // can't be made.
    static std::unique_ptr<PendingFile> create(const std::filesystem::path& folder,
                                               std::string* error);
    ~PendingFile();  // removes the temporary file unless it was committed
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    // The output handed to the module: the file, written in large blocks.
    IoObject* io() { return writer_->io(); }
    // Closes the output if the module left it open.
    void finish();
    int64_t bytes() const;
    // Up to `count` bytes from the start of what was written.
    std::string head(size_t count) const;

    // Gives the file its name. Without `overwrite` an existing file of that
    // name is left alone and the call fails; a file that could not be written
    // whole is never given its name.
    bool commit(const std::filesystem::path& target, bool overwrite, std::string* error);

private:
    PendingFile(std::filesystem::path temporary, int fd, int keptFd);

    std::filesystem::path temporary_;
    std::unique_ptr<tnefhost::FileIo> output_;
    std::unique_ptr<tnefclient::WriteBehindIo> writer_;
    int keptFd_;  // a second descriptor that outlives the module's close
    bool committed_ = false;
};

// The permission bits new files get (0666 less the umask), read once; call
// before any thread starts.
unsigned newFileMode();

}  // namespace tnefcli
