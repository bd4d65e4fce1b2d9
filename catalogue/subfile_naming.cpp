#include "catalogue/subfile_naming.h"

#include <stdio.h>
#include <string.h>

#include "reader/memory.h"
#include "reader/strings.h"
#include "reader/text_conversions.h"
#include "stream/property_access.h"

namespace {

enum : uint32_t {
    kTagMessageClass16 = 0x001A001F,
    kTagMessageClass8 = 0x001A001E,
    kTagSubject16 = 0x0037001F,
    kTagSubject8 = 0x0037001E,
    kTagLongFileName16 = 0x3707001F,
    kTagLongFileName8 = 0x3707001E,
};

// A stem holds at most 8 stored bytes, in a zeroed buffer that later also
// takes the extension.
enum : int32_t { kStemBytes = 8, kStemBuffer = 30 };

struct ClassRow {
    const char* ipm;
    const char* ipc;
    int32_t length;
    const char* extension;
};

constexpr ClassRow kClassRows[] = {
    {"IPM.Note", "IPC.Note", 8, ".mail"},
    {"IPM.Task", "IPC.Task", 8, ".task"},
    {"IPM.Post", "IPC.Post", 8, ".post"},
    {"IPM.Contact", "IPC.Contact", 11, ".cont"},
    {"IPM.Appointment", "IPC.Appointment", 15, ".cal"},
    {"IPM.StickyNote", "IPC.StickyNote", 14, ".note"},
    {"IPM.Activity", "IPC.Activity", 12, ".jrnl"},
};

// Bytes no file name may hold. A 16-bit subject's stem passes the control
// bytes 1 to 31 and drops only 0 and the nine characters.
bool isForbidden(uint8_t byte, bool controlsPass) {
    switch (byte) {
        case '?': case ':': case '\\': case '/': case '*':
        case '<': case '>': case '|': case '"':
            return true;
        default:
            return controlsPass ? byte == 0 : byte < 32;
    }
}

// Builds the stem of `source` into `stem` (kStemBuffer zeroed bytes).
// Forbidden bytes are dropped and don't count; leading spaces are stored but
// taken back, so the next byte lands on the same place.
void buildStem(char* stem, const uint8_t* source, int32_t length, bool controlsPass) {
    memset(stem, 0, kStemBuffer);
    int32_t count = 0;
    for (int32_t i = 0; i < length && count < kStemBytes; ++i) {
        if (isForbidden(source[i], controlsPass)) continue;
        stem[count++] = static_cast<char>(source[i]);
        if (count == 1 && stem[0] == ' ') count = 0;
    }
}

// A terminated copy of at most `length` bytes, cut at the first zero byte,
// from the allocator inside the host.
char* duplicateBounded(TnefContainer* container, const uint8_t* text, int32_t length) {
    int32_t used = tnefBoundedLength(reinterpret_cast<const char*>(text), length);
    auto* copy = static_cast<char*>(tnefAlloc(tnefHostAllocator(container), tnefSizeAdd(used, 1)));
    if (copy == nullptr) return nullptr;
    memcpy(copy, text, static_cast<size_t>(used));
    copy[used] = '\0';
    return copy;
}

// A property is taken when it holds text of its form with at least one byte.
MetaElement* takeText(TnefContainer* container, TnefObject* object, uint32_t tag) {
    int32_t type = (tag & 0xFFFF) == 0x001F ? kElementText16 : kElementText8;
    MetaElement* element =
        tnefFetchTyped(container, tnefHostAllocator(container), object, tag, type);
    if (element != nullptr && element->size > 0) return element;
    tnefFreeElement(tnefHostAllocator(container), element);
    return nullptr;
}

const uint8_t* bytesOf(const MetaElement* element) {
    return reinterpret_cast<const uint8_t*>(element->value);
}

// Converts a 16-bit text element to `charset`; null when nothing came.
uint8_t* convertText(TnefContainer* container, const MetaElement* element, CharsetId charset,
                     int32_t* length) {
    uint8_t* converted = tnefUnicodeToCharset(container, bytesOf(element), element->size, length,
                                              charset);
    if (converted != nullptr && *length > 0) return converted;
    tnefFree(tnefHostAllocator(container), converted);
    return nullptr;
}

void nameMessage(TnefContainer* container, TnefObject* object) {
    HostAllocator* allocator = tnefHostAllocator(container);
    const char* extension = ".mail";
    if (MetaElement* cls = takeText(container, object, kTagMessageClass16)) {
        int32_t length = 0;
        if (uint8_t* text = convertText(container, cls, kCharsetWindows1252, &length)) {
            extension = tnefClassExtension(reinterpret_cast<char*>(text), length);
            allocator->free(allocator, text);
        }
        tnefFreeElement(allocator, cls);
    } else if (MetaElement* cls8 = takeText(container, object, kTagMessageClass8)) {
        extension = tnefClassExtension(reinterpret_cast<const char*>(bytesOf(cls8)), cls8->size);
        tnefFreeElement(allocator, cls8);
    }

    char stem[kStemBuffer];
    memset(stem, 0, sizeof stem);
    if (MetaElement* subject = takeText(container, object, kTagSubject16)) {
        int32_t length = 0;
        if (uint8_t* text = convertText(container, subject, kCharsetUtf8, &length)) {
            buildStem(stem, text, length, true);
            allocator->free(allocator, text);
        }
        tnefFreeElement(allocator, subject);
    } else if (MetaElement* subject8 = takeText(container, object, kTagSubject8)) {
        int32_t length = tnefBoundedLength(reinterpret_cast<const char*>(bytesOf(subject8)),
                                           subject8->size);
        buildStem(stem, bytesOf(subject8), length, false);
        tnefFreeElement(allocator, subject8);
    }
    if (stem[0] == '\0') memcpy(stem, "zdmsg", 6);
    strncat(stem, extension, kStemBuffer - strlen(stem) - 1);
    object->name = container->host->hostDuplicateString(container->host, stem);
}

// Rules for the name of a plain attachment from its long file name. True
// when one of them applied, whatever it gave.
bool nameFromLongFileName(TnefContainer* container, TnefObject* object) {
    HostAllocator* allocator = tnefHostAllocator(container);
    if (object->attachKind == kAttachEmbeddedMessage || object->props == nullptr) return false;
    if (MetaElement* name16 = takeText(container, object, kTagLongFileName16)) {
        int32_t length = 0;
        if (uint8_t* text = convertText(container, name16, kCharsetUtf8, &length)) {
            object->name = duplicateBounded(container, text, length);
            allocator->free(allocator, text);
        }
        tnefFreeElement(allocator, name16);
        return true;
    }
    if (MetaElement* name8 = takeText(container, object, kTagLongFileName8)) {
        // The stored text need not end in a terminator: the host duplicates
        // a terminated copy of it.
        if (char* text = duplicateBounded(container, bytesOf(name8), name8->size)) {
            object->name = container->host->hostDuplicateString(container->host, text);
            allocator->free(allocator, text);
        }
        tnefFreeElement(allocator, name8);
        return true;
    }
    return false;
}

void nameAttachment(TnefContainer* container, TnefObject* object, int32_t place) {
    HostContext* host = container->host;
    if (nameFromLongFileName(container, object)) return;
    const char* title = object->attachTitle;
    char text[kStemBuffer + 24];
    if (title != nullptr && title[0] != '\0' && object->attachKind == kAttachEmbeddedMessage) {
        char stem[kStemBuffer];
        buildStem(stem, reinterpret_cast<const uint8_t*>(title), static_cast<int32_t>(strlen(title)),
                  false);
        if (stem[0] != '\0') {
            snprintf(text, sizeof text, "%s_zd%d", stem, place);
        } else {
            snprintf(text, sizeof text, "zd%d", place);
        }
        object->name = host->hostDuplicateString(host, text);
    } else if (title != nullptr && title[0] != '\0') {
        object->name = host->hostDuplicateString(host, title);
        for (char* p = object->name; p != nullptr && *p != '\0'; ++p) {
            if (isForbidden(static_cast<uint8_t>(*p), false)) *p = ' ';
        }
    } else {
        snprintf(text, sizeof text, "zd%d.tmp", place);
        object->name = host->hostDuplicateString(host, text);
    }
}

}  // namespace

const char* tnefClassExtension(const char* messageClass, int32_t length) {
    for (const ClassRow& row : kClassRows) {
        if (length >= row.length && (strncmp(messageClass, row.ipm, row.length) == 0 ||
                                     strncmp(messageClass, row.ipc, row.length) == 0)) {
            return row.extension;
        }
    }
    return ".mail";
}

int32_t tnefMakeSubfileName(TnefContainer* container, TnefObject* object, int32_t place) {
    if (object->name != nullptr) return kTnefOk;
    if (object->kind == kObjectMessage && object->props != nullptr) {
        nameMessage(container, object);
    } else if (object->kind == kObjectAttachment) {
        nameAttachment(container, object, place);
    }
    return object->name != nullptr ? kTnefOk : kTnefNoName;
}
