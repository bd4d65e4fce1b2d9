#include "cli/session.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "cli/buffered_io.h"

namespace tnefcli {

namespace {

// Element types whose value is a pointer to bytes, and how many bytes a
// fixed-size one holds.
size_t fixedValueBytes(int32_t type) {
    switch (type) {
        case kElementInt64:
        case kElementTime:
        case kElementDouble: return 8;
        case kElementFloat: return 4;
        default: return 0;
    }
}

bool valueIsPointer(int32_t type) {
    return type == kElementBinary || type == kElementText8 || type == kElementText16 ||
           fixedValueBytes(type) != 0;
}

constexpr uint32_t kMapiClsid = 0x0048;
constexpr size_t kClsidBytes = 16;

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

std::unique_ptr<tnefhost::HostIo> openFile(const std::string& path, std::string* error) {
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

Session::Session(const ReaderModule& module, tnefhost::PosixHost& host)
    : module_(module), host_(host) {
    resultMemory_.owner = this;
    resultMemory_.allocator = resultHeap_.allocator();
}

Session::~Session() {
    if (container_ != nullptr) module_.table.tnefCloseContainer(container_);
}

Session::Opened Session::open(const std::string& file, bool rootEntry, std::string* error) {
    rootEntry_ = rootEntry;
    file_ = file == "-" ? spoolStandardInput(error) : openFile(file, error);
    if (file_ == nullptr) return Opened::kUnreadable;
    input_ = std::make_unique<ReadAheadIo>(*file_);
    openStatus_ = -1;
    container_ = module_.table.tnefOpenContainer(input_->io(), host(),
                                                 rootEntry ? kTnefOpenRootEntry : 0u, 0, 0,
                                                 &openStatus_);
    if (container_ == nullptr) {
        *error = "cannot open " + (file == "-" ? std::string("standard input") : file);
        return Opened::kUnreadable;
    }
    ContainerInfo info{};
    if (module_.table.tnefGetContainerInfo(container_, &info, results()) == kTnefOk) {
        subfileCount_ = info.subfileCount;
    }
    int32_t objects = subfileCount_ - (rootEntry ? 1 : 0);
    if (openStatus_ != kTnefOk && objects <= 0) {
        *error = "not a TNEF stream";
        return Opened::kNotTnef;
    }
    return Opened::kOk;
}

void Session::release(void* block) {
    if (block != nullptr) resultMemory_.allocator->free(resultMemory_.allocator, block);
}

std::optional<std::string> Session::takeText(char* text) {
    if (text == nullptr) return std::nullopt;
    std::string copy(text);
    release(text);
    return copy;
}

SubfileEntry Session::subfile(int32_t index) {
    SubfileEntry entry;
    entry.index = index;
    SubfileInfo info{};
    info.parentIndex = -1;
    info.charset = -1;  // left alone by the module for every object but the first
    entry.status = module_.table.tnefGetSubfileInfo(container_, index, &info, results());
    entry.name = takeText(info.name);
    entry.type = info.type;
    entry.size = info.size;
    std::memcpy(entry.time, info.time, sizeof entry.time);
    entry.hasCharset = info.charset != -1;
    entry.charset = entry.hasCharset ? info.charset : 0;
    entry.parentIndex = info.parentIndex;
    if (info.children != nullptr) {
        entry.children.assign(info.children, info.children + info.childCount);
        release(info.children);
    }
    return entry;
}

int32_t Session::messageIndex() {
    for (int32_t i = 0; i < subfileCount_; ++i) {
        SubfileEntry entry = subfile(i);
        if (entry.status == kTnefOk && entry.type == kSubfileMessage) return i;
    }
    return -1;
}

CharsetId Session::messageCharset() {
    if (!messageCharset_) {
        SubfileEntry first = subfile(rootEntry_ ? 1 : 0);
        messageCharset_ = first.hasCharset ? first.charset : 0;
    }
    return *messageCharset_;
}

std::vector<Element> Session::takeElements(MetadataResult& result) {
    std::vector<Element> elements;
    if (result.items == nullptr) return elements;
    // `count` says how many entries hold an element; a partial answer may
    // hold fewer, so every slot up to it is tested.
    for (int32_t i = 0; i < result.count; ++i) {
        MetaElement* item = result.items[i];
        if (item == nullptr) continue;
        Element element;
        element.hasValue = item->hasValue != 0;
        element.tag = item->tag;
        element.type = item->type;
        element.name = takeText(item->name);
        auto* pointer = reinterpret_cast<const uint8_t*>(static_cast<uintptr_t>(item->value));
        if (valueIsPointer(item->type)) {
            size_t length = static_cast<size_t>(item->size > 0 ? item->size : 0);
            if (size_t fixed = fixedValueBytes(item->type); fixed != 0) length = fixed;
            if (item->type == kElementBinary && length == 0 && (item->tag & 0xFFFF) == kMapiClsid) {
                length = kClsidBytes;
            }
            if (pointer != nullptr) element.bytes.assign(pointer, pointer + length);
            release(const_cast<uint8_t*>(pointer));
        } else {
            element.number = static_cast<int64_t>(item->value);
        }
        release(item);
        elements.push_back(std::move(element));
    }
    release(result.items);
    return elements;
}

std::vector<Element> Session::summary(int32_t index, int32_t* status) {
    MetadataResult result{};
    *status = module_.table.tnefGetSubfileMetadata(container_, index, 0, nullptr, &result,
                                                   results());
    return takeElements(result);
}

std::vector<Element> Session::properties(int32_t index, const std::vector<uint32_t>& tags,
                                         int32_t* status) {
    std::vector<MetadataRequest> requests(tags.size());
    std::vector<MetadataRequest*> list(tags.size());
    for (size_t i = 0; i < tags.size(); ++i) {
        requests[i] = MetadataRequest{0, tags[i]};
        list[i] = &requests[i];
    }
    MetadataResult result{};
    *status = module_.table.tnefGetSubfileMetadata(container_, index,
                                                   static_cast<int32_t>(list.size()),
                                                   list.empty() ? nullptr : list.data(), &result,
                                                   results());
    return takeElements(result);
}

ExtractOutcome Session::extract(int32_t index, IoObject* output, uint32_t flags,
                                CharsetId charset) {
    ExtractRequest request{};
    request.outputCharset = charset;
    ExtractOutcome outcome;
    outcome.status =
        module_.table.tnefExtractSubfile(container_, index, output, &request, results(), flags);
    outcome.resultFlags = request.resultFlags;
    outcome.linkedPath = takeText(request.subfilePath);
    outcome.payloadName = takeText(request.subfileName);
    return outcome;
}

}  // namespace tnefcli
