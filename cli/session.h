// One open TNEF stream: the input, the container and every call into the
// module, with the memory the module hands back released in one place.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/module_loader.h"
#include "host/io_objects.h"
#include "host/posix_host.h"
#include "reader/host.h"

namespace tnefcli {

// A subfile as the module describes it.
struct SubfileEntry {
    int32_t index = 0;
    int32_t status = 0;            // of tnefGetSubfileInfo
    std::optional<std::string> name;  // the module's bytes, as they came
    int32_t type = 0;
    int32_t size = 0;
    uint8_t time[8] = {};
    CharsetId charset = 0;
    bool hasCharset = false;  // only the first object reports one
    int32_t parentIndex = -1;
    std::vector<int32_t> children;
};

// A metadata element copied out of the module's memory.
struct Element {
    bool hasValue = false;
    uint32_t tag = 0;
    int32_t type = 0;
    std::optional<std::string> name;
    int64_t number = 0;          // types 1 and 3
    std::vector<uint8_t> bytes;  // every type whose value is a pointer
};

struct ExtractOutcome {
    int32_t status = 0;
    uint32_t resultFlags = 0;
    std::optional<std::string> linkedPath;   // subfilePath of an OLE object
    std::optional<std::string> payloadName;  // subfileName of an OLE object
};

class Session {
public:
    enum class Opened { kOk, kUnreadable, kNotTnef };

    Session(const ReaderModule& module, tnefhost::PosixHost& host);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Opens a file, or standard input for "-" (spooled to a scratch file,
    // since the module seeks). `error` receives the reason of a failure.
    Opened open(const std::string& file, bool rootEntry, std::string* error);

    int32_t openStatus() const { return openStatus_; }
    int32_t subfileCount() const { return subfileCount_; }
    HostContext* host() { return host_.context(); }

    SubfileEntry subfile(int32_t index);
    // Index of the first message subfile, or -1.
    int32_t messageIndex();
    // The charset of the message's 8-bit text, 0 when none is known.
    CharsetId messageCharset();

    // The seven summary elements of the message at `index`; status out.
    std::vector<Element> summary(int32_t index, int32_t* status);
    // The elements the module found for `tags` on `index`, packed.
    std::vector<Element> properties(int32_t index, const std::vector<uint32_t>& tags,
                                    int32_t* status);

    ExtractOutcome extract(int32_t index, IoObject* output, uint32_t flags, CharsetId charset);

private:
    ResultMemory* results() { return &resultMemory_; }
    void release(void* block);
    std::vector<Element> takeElements(MetadataResult& result);
    std::optional<std::string> takeText(char* text);

    const ReaderModule& module_;
    tnefhost::PosixHost& host_;
    tnefhost::HostMemory resultHeap_;
    ResultMemory resultMemory_{};
    std::unique_ptr<tnefhost::HostIo> file_;  // the file or the spooled standard input
    std::unique_ptr<tnefhost::HostIo> input_;  // what the module reads: file_, read ahead
    TnefContainer* container_ = nullptr;
    int32_t openStatus_ = 0;
    int32_t subfileCount_ = 0;
    bool rootEntry_ = false;
    std::optional<CharsetId> messageCharset_;
};

}  // namespace tnefcli
