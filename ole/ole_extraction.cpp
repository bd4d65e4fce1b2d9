// Unpacking an OLE object staged in a scratch object: a bare storage gives
// its payload stream, a linked object the path of its file, and anything
// else goes out whole.
#include "ole/ole_extraction.h"

#include <string.h>

#include "ole/descriptor_parsers.h"
#include "ole/ole_log.h"
#include "reader/bytes.h"

namespace {

// At most this much of a descriptor stream is read.
enum : int32_t { kDescriptorBytes = 4086 };
// The payload copy never takes more than this from the allocator.
enum : int32_t { kLargestChunk = 32768 };
// Where the payload of a "Primary" stream starts.
enum : int32_t { kPrimaryStart = 176 };
enum : int32_t { kWholeObjectBlock = 4096 };

constexpr char kCompObj[] = "\x01" "CompObj";
constexpr char kAttachDesc[] = "AttachDesc";
constexpr char kOle10Native[] = "\x01" "Ole10Native";
constexpr char kOleLink[] = "\x01" "Ole";
constexpr char kPrimary[] = "\x06" "Primary";

// The streams that may hold the payload, in the order they are tried.
constexpr const char* kMainStreams[] = {
    kOle10Native, "Workbook",       "Contents",       "CONTENTS", "CONTENTSV30", "FLDATA",
    "123 Property", "AttachContents", "package_stream", "Package",  kPrimary,      nullptr,
};

constexpr char kFailedOpenStorage[] = "oleExtractSubFileFromOleStream(): Failed to open OLE interface.";
constexpr char kFailedSeek[] =
    "oleExtractSubFileFromOleStream(): Failed to seek to subfile in main OLE stream.";
constexpr char kFailedOpenOutput[] = "oleExtractSubFileFromOleStream(): Failed to open output file.";
constexpr char kFailedWrite[] = "oleExtractSubFileFromOleStream(): Failed to write to output file.";
constexpr char kFailedClose[] = "oleExtractSubFileFromOleStream(): Failed to close output file.";
constexpr char kFailedExtract[] = "oleExtractSubFileFromOleStream(): Failed to extract subfile.";
constexpr char kFailedMainStream[] = "oleExtractSubFileFromOleStream(): Failed to find main OLE stream.";

int32_t readStream(IoObject* stream, void* buffer, int32_t count) {
    if (stream->read == nullptr) return 0;
    int32_t got = stream->read(stream, buffer, static_cast<uint32_t>(count));
    return got < 0 ? 0 : got;
}

// Reads the storage's current stream into the descriptor buffer and, when
// bytes came, hands them to `parse` while the stream is still open; then
// releases the stream. Gives the count of bytes read, 0 when nothing came.
template <typename Parse>
int32_t readDescriptor(OleInterface* ole, void* storage, uint8_t* buffer, Parse parse) {
    int32_t count = 0;
    IoObject* stream = ole->openStream(storage);
    if (stream != nullptr) {
        if (stream->open != nullptr && stream->open(stream) != 0) {
            count = readStream(stream, buffer, kDescriptorBytes);
            if (count > 0) parse(count);
            if (stream->close != nullptr) stream->close(stream);
        }
        ole->closeStream(storage);
    }
    ole->resetStream(storage, 0);
    return count;
}

// Learns from the descriptors where the payload starts, how long it is and
// what it is called.
void readDescriptors(HostContext* host, HostAllocator* allocator, OleInterface* ole, void* storage,
                     uint8_t* buffer, ExtractRequest* request, int32_t* startOffset,
                     int32_t* payloadSize) {
    if (ole->findStream(storage, kCompObj) != 0) {
        readDescriptor(ole, storage, buffer, [&](int32_t count) {
            oleProcessCompObjStream(host, buffer, count, startOffset);
        });
    } else if (ole->findStream(storage, kAttachDesc) != 0) {
        readDescriptor(ole, storage, buffer, [&](int32_t count) {
            oleProcessAttachDescStream(host, allocator, buffer, count, &request->subfileName);
        });
        *startOffset = 0;
    }
    if (*startOffset < 0 && ole->findStream(storage, kOle10Native) != 0) {
        readDescriptor(ole, storage, buffer, [&](int32_t count) {
            oleProcessOle10NativeStream(host, allocator, buffer, count, startOffset, payloadSize,
                                        &request->subfileName);
        });
    }
    if (*startOffset < 0) *startOffset = 0;
}

const char* findMainStream(OleInterface* ole, void* storage) {
    for (const char* const* name = kMainStreams; *name != nullptr; ++name) {
        if (ole->findStream(storage, *name) != 0) return *name;
    }
    return nullptr;
}

// Copies the payload of the main stream to the output.
int32_t copyPayload(HostContext* host, HostAllocator* allocator, IoObject* stream,
                    IoObject* outputIo, const char* mainStream, int32_t startOffset,
                    int32_t payloadSize, uint8_t* descriptorBuffer) {
    int32_t status = kTnefOk;
    uint8_t* chunkBuffer = nullptr;
    uint8_t* allocated = nullptr;
    int32_t chunk = 0;
    if (stream->seek == nullptr || stream->seek(stream, 0, kSeekEnd) == 0) {
        oleLogLine(host, kFailedSeek);
        status = kTnefNoName;
    } else {
        auto size = static_cast<int32_t>(stream->tell != nullptr ? stream->tell(stream) : 0);
        chunkBuffer = descriptorBuffer;
        chunk = kDescriptorBytes;
        if (size > kDescriptorBytes) {
            int32_t wanted = size < kLargestChunk ? size : kLargestChunk;
            allocated = static_cast<uint8_t*>(allocator->alloc(allocator, static_cast<size_t>(wanted)));
            if (allocated != nullptr) {
                chunkBuffer = allocated;
                chunk = wanted;
            }
        }
    }

    if (mainStream == kPrimary) startOffset = kPrimaryStart;
    if (stream->seek == nullptr || stream->seek(stream, startOffset, kSeekSet) == 0) {
        oleLogLine(host, kFailedSeek);
        status = kTnefNoName;
    } else if (outputIo->open == nullptr || outputIo->open(outputIo) == 0) {
        oleLogLine(host, kFailedOpenOutput);
        status = kTnefNoName;
    } else {
        while (chunk > 0 && (payloadSize == -1 || payloadSize > 0)) {
            int32_t count = readStream(stream, chunkBuffer, chunk);
            if (count == 0) break;
            if (payloadSize != -1) {
                payloadSize -= count;
                if (payloadSize < 0) {
                    count += payloadSize;
                    payloadSize = 0;
                }
            }
            if (outputIo->write == nullptr ||
                outputIo->write(outputIo, chunkBuffer, static_cast<uint32_t>(count)) == 0) {
                oleLogLine(host, kFailedWrite);
                status = kTnefNoName;
                break;
            }
        }
        if (outputIo->close == nullptr || outputIo->close(outputIo) == 0) {
            oleLogLine(host, kFailedClose);
            status = kTnefNoName;
        }
        outputIo->size = -1;
    }
    if (stream->close != nullptr) stream->close(stream);
    if (allocated != nullptr) allocator->free(allocator, allocated);
    return status;
}

// The object's own bytes, when it is no storage or holds no payload stream.
int32_t copyWholeObject(IoObject* tempIo, IoObject* outputIo) {
    if (outputIo->open == nullptr) return kTnefOutputUnusable;
    if (tempIo->open != nullptr) tempIo->open(tempIo);
    if (tempIo->seek != nullptr) tempIo->seek(tempIo, 0, kSeekSet);
    outputIo->open(outputIo);
    if (outputIo->seek != nullptr) outputIo->seek(outputIo, 0, kSeekSet);
    uint8_t block[kWholeObjectBlock];
    int64_t total = 0;
    for (;;) {
        int32_t got = readStream(tempIo, block, kWholeObjectBlock);
        if (got < 1) break;
        if (outputIo->write != nullptr && outputIo->write(outputIo, block, static_cast<uint32_t>(got)) != 0) {
            total += got;
        }
    }
    if (tempIo->close != nullptr) tempIo->close(tempIo);
    if (outputIo->close != nullptr) outputIo->close(outputIo);
    outputIo->size = total;
    return kTnefOk;
}

// A storage with no payload stream may link to an outside file, whose path
// then goes to the request. 0 for a link; 6 otherwise.
int32_t readLink(HostContext* host, HostAllocator* allocator, OleInterface* ole, void* storage,
                 uint8_t* buffer, ExtractRequest* request) {
    int32_t status = kTnefNoName;
    if (ole->findStream(storage, kOleLink) != 0) {
        readDescriptor(ole, storage, buffer, [&](int32_t count) {
            status = oleProcessOleStream(host, allocator, buffer, count, 1, &request->subfileName,
                                         &request->subfilePath);
        });
        if (status == kTnefOk) {
            request->resultFlags &= ~static_cast<uint32_t>(kTnefResultLinked);
            request->resultFlags |= kTnefResultOleLink;
        }
    }
    return status;
}

}  // namespace

int32_t oleExtractSubFileFromOleStream(HostContext* host, HostAllocator* allocator,
                                       OleInterface* ole, IoObject* tempIo, IoObject* outputIo,
                                       ExtractRequest* request) {
    uint8_t probe[kFormatProbeSize];
    memset(probe, 0, sizeof probe);
    memset(probe, 0xFF, 8);
    memcpy(probe + kFormatProbeIoOffset, &tempIo, sizeof tempIo);
    int32_t detected = host->hostDetectFormat != nullptr
                           ? host->hostDetectFormat(host, probe, request->detectedFormat)
                           : 0;
    if (detected == 1 && static_cast<int32_t>(tnefLe32(request->detectedFormat + 4)) != kFormatOleStorage) {
        return copyWholeObject(tempIo, outputIo);
    }

    int32_t startOffset = -1;
    int32_t payloadSize = -1;
    void* storage = ole->openStorage(tempIo, allocator);
    if (storage == nullptr) {
        oleLogLine(host, kFailedOpenStorage);
        return kTnefNoName;
    }
    uint8_t descriptor[kDescriptorBytes];
    readDescriptors(host, allocator, ole, storage, descriptor, request, &startOffset, &payloadSize);

    const char* mainStream = findMainStream(ole, storage);
    if (mainStream == nullptr) {
        int32_t status = readLink(host, allocator, ole, storage, descriptor, request);
        if (status == kTnefOk) {
            ole->closeStorage(storage);
            memset(request->detectedFormat, 0, sizeof request->detectedFormat);
            return kTnefOk;
        }
        oleLogLine(host, kFailedMainStream);
        ole->closeStorage(storage);
        return copyWholeObject(tempIo, outputIo);
    }

    int32_t status = kTnefOk;
    if (IoObject* stream = ole->openStream(storage)) {
        status = copyPayload(host, allocator, stream, outputIo, mainStream, startOffset, payloadSize,
                             descriptor);
        ole->closeStream(storage);
    }
    ole->resetStream(storage, 0);
    ole->closeStorage(storage);
    if (status != kTnefOk) {
        oleLogLine(host, kFailedExtract);
        return status;
    }
    memset(request->detectedFormat, 0, sizeof request->detectedFormat);
    return kTnefOk;
}
