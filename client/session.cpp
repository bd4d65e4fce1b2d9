// The session over one open stream: opening the container, and every call
// into the module, with what it hands back copied out and released.
#include <cstring>

#include "client/buffered_io.h"
#include "client/tnef_client.h"

namespace tnefclient {

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

uint32_t extractFlags(const ExtractSettings& settings) {
    uint32_t flags = settings.noHeader ? kTnefExtractOmitHeader : 0u;
    if (settings.body == BodyChoice::kHtml || settings.body == BodyChoice::kRtf) {
        flags |= kTnefExtractPreferStoredBody;
    }
    return flags;
}

}  // namespace

Session::Session(const ReaderModule& module, HostContext* host) : module_(module), host_(host) {
    resultMemory_.owner = this;
    resultMemory_.allocator = resultHeap_.allocator();
}

Session::~Session() {
    if (container_ != nullptr) module_.table.tnefCloseContainer(container_);
}

Opened Session::start(std::unique_ptr<tnefhost::HostIo> source, bool readAhead,
                      const OpenOptions& options, const std::string& label, std::string* error) {
    rootEntry_ = options.rootEntry;
    source_ = std::move(source);
    if (source_ == nullptr) return Opened::kUnreadable;
    IoObject* input = source_->io();
    if (readAhead) {
        input_ = std::make_unique<ReadAheadIo>(*source_);
        input = input_->io();
    }
    openStatus_ = -1;
    container_ = module_.table.tnefOpenContainer(input, host_,
                                                 rootEntry_ ? kTnefOpenRootEntry : 0u, 0, 0,
                                                 &openStatus_);
    if (container_ == nullptr) {
        *error = "cannot open " + label;
        return Opened::kUnreadable;
    }
    ContainerInfo info{};
    if (module_.table.tnefGetContainerInfo(container_, &info, results()) == kTnefOk) {
        subfileCount_ = info.subfileCount;
    }
    int32_t objects = subfileCount_ - (rootEntry_ ? 1 : 0);
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

ExtractOutcome Session::extract(int32_t index, IoObject* output, const ExtractSettings& settings) {
    ExtractRequest request{};
    request.outputCharset = settings.charset;
    ExtractOutcome outcome;
    outcome.status = module_.table.tnefExtractSubfile(container_, index, output, &request,
                                                      results(), extractFlags(settings));
    outcome.resultFlags = request.resultFlags;
    outcome.linkedPath = takeText(request.subfilePath);
    outcome.payloadName = takeText(request.subfileName);
    return outcome;
}

}  // namespace tnefclient
