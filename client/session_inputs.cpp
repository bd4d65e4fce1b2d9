// The inputs a session opens: a file, standard input spooled to a scratch
// file, bytes in memory, or any IoObject.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "client/tnef_client.h"

namespace tnefclient {

namespace {

// Copies standard input into a scratch object that the module can seek in.
std::unique_ptr<tnefhost::HostIo> spoolStandardInput(std::string* error) {
    auto scratch = std::make_unique<tnefhost::ScratchIo>();
    IoObject* io = scratch->io();
    if (io->open(io) == 0) {
        *error = "cannot create a scratch file for standard input";
        return nullptr;
    }
    char buffer[65536];
    for (;;) {
        ssize_t n = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            *error = std::string("cannot read standard input: ") + std::strerror(errno);
            return nullptr;
        }
        if (n == 0) break;
        if (io->write(io, buffer, static_cast<uint32_t>(n)) == 0) {
            *error = "cannot spool standard input to a scratch file";
            return nullptr;
        }
    }
    io->seek(io, 0, kSeekSet);
    return scratch;
}

std::unique_ptr<tnefhost::HostIo> openReadableFile(const std::string& path, std::string* error) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        *error = std::string("cannot read: ") + std::strerror(errno);
        return nullptr;
    }
    if (S_ISDIR(info.st_mode)) {
        *error = "cannot read: is a directory";
        return nullptr;
    }
    if (::access(path.c_str(), R_OK) != 0) {
        *error = std::string("cannot read: ") + std::strerror(errno);
        return nullptr;
    }
    return std::make_unique<tnefhost::FileIo>(path, tnefhost::FileIo::Mode::kRead);
}

}  // namespace

Opened Session::open(const std::string& file, const OpenOptions& options, std::string* error) {
    return file == "-" ? openStandardInput(options, error) : openFile(file, options, error);
}

Opened Session::openFile(const std::string& path, const OpenOptions& options, std::string* error) {
    return start(openReadableFile(path, error), true, options, path, error);
}

Opened Session::openStandardInput(const OpenOptions& options, std::string* error) {
    return start(spoolStandardInput(error), true, options, "standard input", error);
}

Opened Session::openBytes(std::vector<uint8_t> bytes, const OpenOptions& options,
                          std::string* error) {
    return start(std::make_unique<tnefhost::MemoryIo>(std::move(bytes)), false, options,
                 "the buffer", error);
}

Opened Session::openIo(std::unique_ptr<tnefhost::HostIo> input, const OpenOptions& options,
                       std::string* error) {
    return start(std::move(input), true, options, "the input", error);
}

}  // namespace tnefclient
