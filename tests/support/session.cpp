#include "tests/support/session.h"

#include <initializer_list>

#include "host/io_objects.h"
#include "host/posix_host.h"
#include "reader/operations.h"

namespace tneftest {
namespace {

using tnefhost::HostMemory;
using tnefhost::MemoryIo;
using tnefhost::SharedIoFaults;

// Tags asked for in request mode: present and absent, fixed and counted.
constexpr MetadataRequest kRequests[] = {
    {0, kTagSubject16},        {0, kTagSubject8},        {0, kTagClientSubmitTime},
    {0, kTagImportance},       {0, kTagAttachLongFilename8}, {0, kTagAttachLongFilename16},
    {0, kTagAttachDataBinary}, {0, kTagRtfCompressed},   {0, 0x7FFF0003},
};

bool isPointerValue(int32_t type) {
    return type != kElementNone && type != kElementBoolean && type != kElementInteger;
}

class Session {
public:
    Session(const Bytes& stream, const SessionFaults& faults, SessionReport& report)
        : stream_(stream), report_(report) {
        io_.failAt = faults.failIoCall;
        tnefhost::HostOptions options;
        options.libraryDir = TNEF_BUILD_DIR;
        options.memory = &hostMemory_;
        options.madeIoFaults = &io_;
        host_ = std::make_unique<tnefhost::PosixHost>(options);
        hostMemory_.refuseRequest(faults.refuseHostRequest);
        results_.refuseRequest(faults.refuseResultRequest);
        if (faults.refuseAbove != 0) {
            hostMemory_.refuseAbove(faults.refuseAbove);
            results_.refuseAbove(faults.refuseAbove);
        }
        memory_.owner = this;
        memory_.allocator = results_.allocator();
    }

    void run() {
        for (uint32_t openFlags : {0u, uint32_t{kTnefOpenRootEntry}}) runContainer(openFlags);
        report_.hostRequests = hostMemory_.requests();
        report_.resultRequests = results_.requests();
        report_.ioCalls = io_.calls;
        host_.reset();
        hostMemory_.clearFaults();
        if (std::string leaks = hostMemory_.leakReport(); !leaks.empty()) {
            problem("module memory left allocated:\n" + leaks);
        }
        if (results_.liveBlocks() != 0) problem("result memory the host could not release");
    }

private:
    void runContainer(uint32_t openFlags) {
        MemoryIo input(stream_);
        input.joinFaults(&io_);
        int32_t status = -1;
        TnefContainer* container =
            tnefOpenContainer(input.io(), host_->context(), openFlags, 0, 0, &status);
        expect("open", status, {0, 2, 4});
        if (container == nullptr) return;
        ContainerInfo info{};
        expect("container info", tnefGetContainerInfo(container, &info, &memory_), {0});
        for (int32_t index = 0; index < info.subfileCount; ++index) {
            listSubfile(container, index);
            queryMetadata(container, index);
            // Extractions run on the container without the root entry; the
            // root entry only moves the indexes.
            if (openFlags == 0) extractEveryForm(container, index);
        }
        tnefCloseContainer(container);
    }

    void listSubfile(TnefContainer* container, int32_t index) {
        SubfileInfo info{};
        expect("subfile info", tnefGetSubfileInfo(container, index, &info, &memory_), {0, 2, 6});
        results_.release(info.name);
        results_.release(info.children);
    }

    void queryMetadata(TnefContainer* container, int32_t index) {
        MetadataResult byDefault{};
        expect("default metadata", tnefGetSubfileMetadata(container, index, 0, nullptr, &byDefault, &memory_),
               {0, 2});
        release(byDefault);
        MetadataRequest copies[std::size(kRequests)];
        MetadataRequest* list[std::size(kRequests)];
        for (size_t i = 0; i < std::size(kRequests); ++i) {
            copies[i] = kRequests[i];
            list[i] = &copies[i];
        }
        MetadataResult byTag{};
        expect("metadata by tag",
               tnefGetSubfileMetadata(container, index, static_cast<int32_t>(std::size(list)), list,
                                      &byTag, &memory_),
               {0, 2});
        release(byTag);
    }

    // The body forms matter for the message; attachments and OLE objects
    // are also extracted with each, since the dispatcher decides by object.
    void extractEveryForm(TnefContainer* container, int32_t index) {
        for (uint32_t flags : {0u, uint32_t{kTnefExtractOmitHeader}, uint32_t{kTnefExtractPreferStoredBody},
                               uint32_t{kTnefExtractOmitHeader | kTnefExtractPreferStoredBody}}) {
            for (CharsetId wanted : {kCharsetNone, kCharsetUtf8, kCharsetUnicode}) {
                MemoryIo output;
                output.joinFaults(&io_);
                ExtractRequest request{};
                request.outputCharset = wanted;
                ++report_.extractions;
                expect("extraction",
                       tnefExtractSubfile(container, index, output.io(), &request, &memory_, flags),
                       {0, 1, 4, 6, 16});
                results_.release(request.subfileName);
                results_.release(request.subfilePath);
                if (flags == 0 && wanted == kCharsetNone) report_.plainOutputs.push_back(output.bytes());
            }
        }
    }

    void release(MetadataResult& result) {
        if (result.items == nullptr) return;
        // A default answer cut short keeps its count of 7 with null places.
        for (int32_t i = 0; i < result.count; ++i) {
            MetaElement* element = result.items[i];
            if (element == nullptr) continue;
            if (isPointerValue(element->type)) results_.release(reinterpret_cast<void*>(element->value));
            results_.release(element->name);
            results_.release(element);
        }
        results_.release(result.items);
    }

    void expect(const char* what, int32_t status, std::initializer_list<int32_t> allowed) {
        for (int32_t ok : allowed) {
            if (status == ok) return;
        }
        problem(std::string(what) + " gave status " + std::to_string(status));
    }

    void problem(std::string text) { report_.problems.push_back(std::move(text)); }

    const Bytes& stream_;
    SessionReport& report_;
    HostMemory hostMemory_;
    HostMemory results_;
    ResultMemory memory_{};
    SharedIoFaults io_;
    std::unique_ptr<tnefhost::PosixHost> host_;
};

}  // namespace

SessionReport runSession(const Bytes& stream, const SessionFaults& faults) {
    SessionReport report;
    Session(stream, faults, report).run();
    return report;
}

}  // namespace tneftest
