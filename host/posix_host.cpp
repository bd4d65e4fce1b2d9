#include "host/posix_host.h"

#include <cstddef>
#include <cstdio>
#include <cstring>

namespace tnefhost {

namespace {

HostMemory* memoryOfContextAllocator(HostAllocator* allocator) {
    auto* context = reinterpret_cast<HostContext*>(reinterpret_cast<char*>(allocator) -
                                                   offsetof(HostContext, allocator));
    return &PosixHost::fromContext(context)->memory();
}

}  // namespace

PosixHost::PosixHost(HostOptions options) : options_(std::move(options)) {
    if (options_.memory == nullptr) ownMemory_ = std::make_unique<HostMemory>();
    memory_ = options_.memory != nullptr ? options_.memory : ownMemory_.get();

    std::memset(&record_.context, 0, sizeof record_.context);
    record_.self = this;
    HostContext* c = &record_.context;
    HostMemory::fillTable<&memoryOfContextAllocator>(&c->allocator);
    c->hostDuplicateString = [](HostContext* host, const char* text) -> char* {
        if (text == nullptr) return nullptr;
        size_t length = std::strlen(text);
        auto* copy = static_cast<char*>(host->allocator.alloc(&host->allocator, length + 1));
        if (copy != nullptr) std::memcpy(copy, text, length + 1);
        return copy;
    };
    c->hostLogMessage = [](HostContext* host, const char* line) {
        fromContext(host)->log(line);
    };
    c->hostSetDefaultCharset = [](HostContext* host, int32_t) {
        host->currentCharset = fromContext(host)->options_.defaultCharset;
    };
    c->currentCharset = options_.defaultCharset;
    hostInstallCharsetServices(c);
    hostInstallLibraryServices(c);
    hostInstallIoServices(c);
    hostInstallFormatDetection(c);
}

PosixHost* PosixHost::fromContext(HostContext* context) {
    return reinterpret_cast<Record*>(context)->self;
}

void PosixHost::log(const char* line) {
    logLines_.emplace_back(line);
    if (options_.logToStderr) {
        if (!options_.logPrefix.empty()) {
            std::fprintf(stderr, "%s: %s\n", options_.logPrefix.c_str(), line);
        } else {
            std::fprintf(stderr, "%s\n", line);
        }
    }
}

}  // namespace tnefhost
