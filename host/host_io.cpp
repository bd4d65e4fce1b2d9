// The IoObject record behind every host I/O object, with fault injection.
#include "host/io_objects.h"

namespace tnefhost {

HostIo::HostIo() {
    handle_.self = this;
    IoObject& t = handle_.table;
    t.size = 0;
    t.open = [](IoObject* io) -> int32_t {
        HostIo* self = fromIo(io);
        if (!self->admit(IoOp::kOpen)) return 0;
        self->open_ = self->doOpen();
        return self->open_ ? 1 : 0;
    };
    t.read = [](IoObject* io, void* buffer, uint32_t count) -> int32_t {
        HostIo* self = fromIo(io);
        return self->admit(IoOp::kRead) ? self->doRead(buffer, count) : 0;
    };
    t.write = [](IoObject* io, const void* buffer, uint32_t count) -> int32_t {
        HostIo* self = fromIo(io);
        return self->admit(IoOp::kWrite) && self->doWrite(buffer, count) ? 1 : 0;
    };
    t.seek = [](IoObject* io, int64_t offset, int32_t origin) -> int32_t {
        HostIo* self = fromIo(io);
        return self->admit(IoOp::kSeek) && self->doSeek(offset, origin) ? 1 : 0;
    };
    t.tell = [](IoObject* io) -> int64_t {
        HostIo* self = fromIo(io);
        return self->admit(IoOp::kTell) ? self->doTell() : -1;
    };
    t.close = [](IoObject* io) -> int32_t {
        HostIo* self = fromIo(io);
        if (!self->admit(IoOp::kClose)) return 0;
        bool closed = self->doClose();
        self->open_ = false;
        return closed ? 1 : 0;
    };
    t.destroy = [](IoObject* io) {
        HostIo* self = fromIo(io);
        self->admit(IoOp::kDestroy);
        if (self->deleteOnDestroy_) delete self;
    };
}

bool HostIo::admit(IoOp op) {
    size_t i = static_cast<size_t>(op);
    ++opCalls_[i];
    ++calls_;
    if (failAt_[i] != 0 && opCalls_[i] == failAt_[i]) return false;
    if (shared_ != nullptr && ++shared_->calls == shared_->failAt) return false;
    return !(failCallAt_ != 0 && calls_ == failCallAt_);
}

void HostIo::failOperation(IoOp op, uint64_t nth) {
    size_t i = static_cast<size_t>(op);
    failAt_[i] = nth == 0 ? 0 : opCalls_[i] + nth;
}

void HostIo::failCall(uint64_t nth) {
    failCallAt_ = nth == 0 ? 0 : calls_ + nth;
}

void HostIo::removeSlot(IoOp op) {
    IoObject& t = handle_.table;
    switch (op) {
        case IoOp::kOpen: t.open = nullptr; break;
        case IoOp::kRead: t.read = nullptr; break;
        case IoOp::kWrite: t.write = nullptr; break;
        case IoOp::kSeek: t.seek = nullptr; break;
        case IoOp::kTell: t.tell = nullptr; break;
        case IoOp::kClose: t.close = nullptr; break;
        case IoOp::kDestroy: t.destroy = nullptr; break;
    }
}

}  // namespace tnefhost
