// The contract between the reader module and the host that loads it.
//
// Everything here is a plain record or a table of function pointers, laid out
// in a fixed order, so that a host written in any language can fill or read it.
// The first group of records belongs to the host; the second group (from
// TnefPropValue on) is private to the module and only lives here so that every
// part of the module sees one definition.
#pragma once

#include <stddef.h>
#include <stdint.h>

extern "C" {

// ---------------------------------------------------------------------------
// Status codes returned by the operations.
// ---------------------------------------------------------------------------
enum : int32_t {
    kTnefOk = 0,
    kTnefAbsent = 1,           // no such property / value; sibling library not loaded
    kTnefNoMemory = 2,         // allocation refused; stored value length outside 1..65535
    kTnefStreamFailure = 4,    // unreadable or malformed input
    kTnefNoName = 6,           // name can't be made; OLE data unusable
    kTnefOutputUnusable = 16,  // output or scratch IoObject lacks an operation or won't open
    kTnefNoObject = 20,        // no object at that index
    kTnefNoEntryPoint = 23,    // sibling library has no GetOLEInterface
    kTnefBadArgument = 34,     // null pointer or index outside the subfiles
};

// Character set numbers shared with the host. 0 means "none".
typedef int32_t CharsetId;
enum : int32_t {
    kCharsetNone = 0,
    kCharsetShiftJis = 1,
    kCharsetGb2312 = 2,
    kCharsetBig5 = 3,
    kCharsetEucKr = 4,
    kCharsetWindows1250 = 5,  // 5..13 are code pages 1250..1258 in order
    kCharsetWindows1252 = 7,
    kCharsetWindows1258 = 13,
    kCharsetWindows874 = 41,
    kCharsetUnicode = 51,  // 16-bit little-endian; on an object: its strings are 16-bit
    kCharsetUtf8 = 53,
};

// Open flag: present a synthetic "root/" directory entry at index 0.
enum : uint32_t { kTnefOpenRootEntry = 0x40000 };
// Extract flags.
enum : uint32_t {
    kTnefExtractOmitHeader = 2,
    kTnefExtractPreferStoredBody = 4,
};
// Bits of ExtractRequest.resultFlags.
enum : uint32_t {
    kTnefResultLinked = 2,
    kTnefResultCharsetConverted = 4,
    kTnefResultOleLink = 8,
};

// ---------------------------------------------------------------------------
// Host services.
// ---------------------------------------------------------------------------
struct HostContext;
struct IoObject;

// Memory. Sizes are 64-bit so that a poisoned 32-bit size, sign-extended,
// asks for more than any allocator grants.
struct HostAllocator {
    void* (*alloc)(HostAllocator* self, size_t size);
    void* (*realloc)(HostAllocator* self, void* block, size_t size);
    void* (*calloc)(HostAllocator* self, size_t count, size_t size);
    void (*free)(HostAllocator* self, void* block);
};

enum : int32_t { kSeekSet = 0, kSeekEnd = 2 };

// A stream of bytes. Any operation slot may be null; callers test before use.
// `size` is a plain field: the content length of an input, and the final
// length the module stores into an output once it is written.
struct IoObject {
    int64_t size;
    int32_t (*open)(IoObject* self);
    int32_t (*read)(IoObject* self, void* buffer, uint32_t count);  // bytes read, 0 at end
    int32_t (*write)(IoObject* self, const void* buffer, uint32_t count);  // nonzero on success
    int32_t (*seek)(IoObject* self, int64_t offset, int32_t origin);     // nonzero on success
    int64_t (*tell)(IoObject* self);
    int32_t (*close)(IoObject* self);  // nonzero on success
    void (*destroy)(IoObject* self);
};

// A source text for the host's conversions: bytes and byte count.
struct HostText {
    const void* bytes;
    int32_t length;
};

// A conversion target. With bytes null and length 0 the call only measures
// and stores the length needed; with a buffer, `length` is its capacity on
// entry and the number of bytes written on return.
struct HostTextBuffer {
    void* bytes;
    int32_t length;
};

// The 248-byte record handed to hostDetectFormat: bytes 0..7 all ones, the
// IoObject pointer at 224..231, everything else zero.
enum : int32_t { kFormatProbeSize = 248, kFormatProbeIoOffset = 224 };
// Format number of a bare OLE compound storage.
enum : int32_t { kFormatOleStorage = 217 };

struct HostContext {
    int32_t (*hostLoadLibrary)(HostContext* host, const char* fileName, void** handle);
    void* (*hostGetProcAddress)(HostContext* host, void* handle, const char* entryName);
    IoObject* (*hostCreateTempIo)(HostContext* host, const char* name, const char* mode);
    IoObject* (*hostWrapOutputIo)(HostContext* host, IoObject* output);
    HostAllocator allocator;
    char* (*hostDuplicateString)(HostContext* host, const char* text);
    void (*hostLogMessage)(HostContext* host, const char* line);
    int32_t (*hostTransformText)(HostContext* host, const HostText* source, HostTextBuffer* target,
                                 int32_t flags);
    int32_t (*hostCharsetToUnicode)(HostContext* host, const HostText* source,
                                    HostTextBuffer* target, uint8_t replacement, int32_t flags);
    int32_t (*hostUnicodeToCharset)(HostContext* host, const HostText* source,
                                    HostTextBuffer* target, uint8_t replacement, int32_t flags);
    int32_t (*hostCharsetToCharset)(HostContext* host, CharsetId sourceCharset,
                                    const HostText* source, HostTextBuffer* target,
                                    uint8_t replacement);
    int32_t (*hostIsLeadByte)(HostContext* host, uint8_t byte, CharsetId charset);
    void (*hostSetDefaultCharset)(HostContext* host, int32_t unused);
    CharsetId currentCharset;
    int32_t (*hostDetectFormat)(HostContext* host, void* probe, void* formatOut);
};

// ---------------------------------------------------------------------------
// Records exchanged with the host by the six operations.
// ---------------------------------------------------------------------------

// Where results handed to the host live. `owner` must not be null where an
// operation tests it; its meaning is the host's.
struct ResultMemory {
    void* owner;
    HostAllocator* allocator;
};

struct ContainerInfo {
    int32_t subfileCount;
};

// One typed item: a decoded property, a summary field, a metadata answer.
enum : int32_t {
    kElementNone = 0,
    kElementBoolean = 1,
    kElementBinary = 2,
    kElementInteger = 3,
    kElementInt64 = 5,
    kElementText8 = 7,
    kElementText16 = 8,
    kElementTime = 9,
    kElementFloat = 10,
    kElementDouble = 11,
};

struct MetaElement {
    int32_t hasValue;
    uint32_t tag;
    int32_t type;
    char* name;
    uint64_t value;  // a number, or a pointer, by `type`
    int32_t size;
};

// Subfile types reported in SubfileInfo.type.
enum : int32_t {
    kSubfileMessage = 0,
    kSubfileAttachment = 1,
    kSubfileOle = 2,
    kSubfileRoot = 3,
};

struct SubfileInfo {
    char* name;
    int32_t type;
    int32_t size;
    int32_t rootMark;
    CharsetId charset;
    uint8_t time[8];  // FILETIME, little-endian
    int32_t parentIndex;
    int32_t childCount;
    int32_t* children;
};

struct MetadataRequest {
    uint32_t kind;  // 0: by property tag; other kinds are not served
    uint32_t tag;
};

struct MetadataResult {
    void* hostData;  // the host's own; never touched by the module
    int32_t count;
    MetaElement** items;
};

struct ExtractRequest {
    char* subfilePath;
    char* subfileName;
    uint32_t resultFlags;
    uint8_t detectedFormat[16];
    CharsetId outputCharset;
};

struct TnefContainer;

struct ReaderInterface {
    TnefContainer* (*tnefOpenContainer)(IoObject* input, HostContext* host, uint32_t flags,
                                        int32_t unused1, intptr_t unused2, int32_t* status);
    void (*tnefCloseContainer)(TnefContainer* container);
    int32_t (*tnefGetContainerInfo)(TnefContainer* container, ContainerInfo* info,
                                    ResultMemory* memory);
    int32_t (*tnefGetSubfileInfo)(TnefContainer* container, int32_t index, SubfileInfo* info,
                                  ResultMemory* memory);
    int32_t (*tnefGetSubfileMetadata)(TnefContainer* container, int32_t index,
                                      int32_t requestCount, MetadataRequest** requests,
                                      MetadataResult* result, ResultMemory* memory);
    int32_t (*tnefExtractSubfile)(TnefContainer* container, int32_t index, IoObject* output,
                                  ExtractRequest* request, ResultMemory* memory, uint32_t flags);
};

// The one export of the module.
#if defined(__GNUC__)
__attribute__((visibility("default")))
#endif
void tnefGetContainerReaderInterfaceEx(ReaderInterface* table);

typedef void (*TnefGetInterfaceFn)(ReaderInterface* table);

// ---------------------------------------------------------------------------
// The sibling OLE storage library's entry table, filled in place by its
// GetOLEInterface. Slots the module never calls are reserved.
// ---------------------------------------------------------------------------
struct OleInterface {
    void* (*openStorage)(IoObject* io, HostAllocator* allocator);    // 0
    void* reserved1;                                                 // 1
    int32_t (*findStream)(void* storage, const char* name);          // 2
    void* reserved3[5];                                              // 3..7
    void (*closeStorage)(void* storage);                             // 8
    void* reserved9;                                                 // 9
    void (*resetStream)(void* storage, int32_t unused);              // 10
    IoObject* (*openStream)(void* storage);                          // 11
    void (*closeStream)(void* storage);                              // 12
    void* reserved13[3];                                             // 13..15
};

typedef int32_t (*GetOleInterfaceFn)(OleInterface* table);

// ---------------------------------------------------------------------------
// The module's private model of an open stream.
// ---------------------------------------------------------------------------

// One property value: up to 16 inline bytes for fixed-size types, or the
// place of the data in the input for counted types.
union TnefPropValue {
    uint8_t bytes[16];
    struct {
        int64_t filePos;
        int32_t length;
    } located;
};

struct TnefPropRow {
    uint32_t tag;
    int32_t valueCount;
    TnefPropValue* values;
};

enum : int32_t { kObjectMessage = 0, kObjectAttachment = 1 };
enum : int32_t {
    kAttachPlain = 0,
    kAttachEmbeddedMessage = 1,
    kAttachOle = 2,
    kAttachByReference = 3,
};

struct TnefObject {
    char* name;
    int64_t dataPos;
    int32_t dataSize;
    int32_t kind;
    uint8_t time[8];
    int32_t parentIndex;
    CharsetId charset;
    CharsetId declaredCharset;
    TnefPropRow* props;
    int32_t propCount;
    char* attachTitle;
    int32_t attachKind;
    int64_t recipTablePos;
    int32_t recipTableSize;
};

struct TnefObjectNode {
    TnefObject* object;
    TnefObjectNode* next;
};

enum : int32_t { kSummarySlots = 7 };

struct TnefContainer {
    HostContext* host;
    IoObject* io;
    uint32_t openFlags;
    TnefObjectNode* objectHead;
    TnefObjectNode* objectTail;
    TnefObject* currentObject;
    int32_t objectCount;
    int64_t lFilePos;
    CharsetId outputCharset;
    int32_t omitSummaryHeader;
    int32_t preferStoredBody;
    int32_t charsetConverted;
    int32_t traceEnabled;
    void* oleLibrary;
    OleInterface ole;
    int32_t summaryCount;
    MetaElement** summary;
};

}  // extern "C"
