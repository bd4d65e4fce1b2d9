// The host's IoObjects: a file over a POSIX descriptor, a memory buffer, a
// scratch file and a pass-through wrapper. Every one of them can be told to
// fail the n-th call of an operation, or of any operation, and can have any
// operation slot left empty.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "reader/host.h"

namespace tnefhost {

enum class IoOp { kOpen, kRead, kWrite, kSeek, kTell, kClose, kDestroy };
constexpr size_t kIoOpCount = 7;

// One count of calls shared by several objects, so that a test can fail the
// n-th I/O call of a whole session, whichever object takes it.
struct SharedIoFaults {
    uint64_t calls = 0;
    uint64_t failAt = 0;  // 1-based; 0 fails none
};

class HostIo {
public:
    HostIo();
    virtual ~HostIo() = default;
    HostIo(const HostIo&) = delete;
    HostIo& operator=(const HostIo&) = delete;

    // The record handed to the module.
    IoObject* io() { return &handle_.table; }
    static HostIo* fromIo(IoObject* io) { return reinterpret_cast<Handle*>(io)->self; }

    // Fault injection, counted from now on, 1-based.
    void failOperation(IoOp op, uint64_t nth);  // the nth call of that operation
    void failCall(uint64_t nth);                // the nth call of any operation
    void removeSlot(IoOp op);                   // leaves the slot empty
    void joinFaults(SharedIoFaults* shared) { shared_ = shared; }
    uint64_t calls() const { return calls_; }
    uint64_t calls(IoOp op) const { return opCalls_[static_cast<size_t>(op)]; }

    // When set, the module's `destroy` deletes this object.
    void setDeleteOnDestroy(bool value) { deleteOnDestroy_ = value; }
    bool isOpen() const { return open_; }

protected:
    virtual bool doOpen() = 0;
    virtual int32_t doRead(void* buffer, uint32_t count) = 0;
    virtual bool doWrite(const void* buffer, uint32_t count) = 0;
    virtual bool doSeek(int64_t offset, int32_t origin) = 0;
    virtual int64_t doTell() = 0;
    virtual bool doClose() = 0;

    bool open_ = false;

private:
    bool admit(IoOp op);
    struct Handle {
        IoObject table;
        HostIo* self;
    } handle_;
    std::array<uint64_t, kIoOpCount> opCalls_{};
    std::array<uint64_t, kIoOpCount> failAt_{};
    uint64_t calls_ = 0;
    uint64_t failCallAt_ = 0;
    SharedIoFaults* shared_ = nullptr;
    bool deleteOnDestroy_ = false;
};

// Bytes in memory: an input made by a test, or an output a test reads back.
class MemoryIo : public HostIo {
public:
    MemoryIo() = default;
    explicit MemoryIo(std::vector<uint8_t> bytes);
    const std::vector<uint8_t>& bytes() const { return bytes_; }
    std::string text() const { return std::string(bytes_.begin(), bytes_.end()); }

protected:
    bool doOpen() override;
    int32_t doRead(void* buffer, uint32_t count) override;
    bool doWrite(const void* buffer, uint32_t count) override;
    bool doSeek(int64_t offset, int32_t origin) override;
    int64_t doTell() override;
    bool doClose() override;

private:
    std::vector<uint8_t> bytes_;
    int64_t position_ = 0;
};

// A file over a POSIX descriptor with 64-bit positions.
class FileIo : public HostIo {
public:
    enum class Mode { kRead, kWrite };
    FileIo(std::string path, Mode mode);
    ~FileIo() override;
    // Opens an already open descriptor's file (the object takes ownership).
    static FileIo* adopt(int fd, Mode mode);

protected:
    bool doOpen() override;
    int32_t doRead(void* buffer, uint32_t count) override;
    bool doWrite(const void* buffer, uint32_t count) override;
    bool doSeek(int64_t offset, int32_t origin) override;
    int64_t doTell() override;
    bool doClose() override;

private:
    std::string path_;
    Mode mode_;
    int fd_ = -1;
    int adopted_ = -1;
};

// The unopened scratch object of hostCreateTempIo, over tmpfile().
class ScratchIo : public HostIo {
public:
    ScratchIo() = default;
    ~ScratchIo() override;

protected:
    bool doOpen() override;
    int32_t doRead(void* buffer, uint32_t count) override;
    bool doWrite(const void* buffer, uint32_t count) override;
    bool doSeek(int64_t offset, int32_t origin) override;
    int64_t doTell() override;
    bool doClose() override;

private:
    std::FILE* file_ = nullptr;
};

// Writes through to another IoObject; hostWrapOutputIo hands these out.
class WrapperIo : public HostIo {
public:
    explicit WrapperIo(IoObject* inner) : inner_(inner) {}

protected:
    bool doOpen() override;
    int32_t doRead(void* buffer, uint32_t count) override;
    bool doWrite(const void* buffer, uint32_t count) override;
    bool doSeek(int64_t offset, int32_t origin) override;
    int64_t doTell() override;
    bool doClose() override;

private:
    IoObject* inner_;
};

}  // namespace tnefhost
