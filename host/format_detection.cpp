// hostDetectFormat: what the head of an IoObject holds. A compound file is
// format 217; other formats get numbers of our own, and only an object that
// can't be read gives a result other than 1.
#include <cstring>

#include "host/format_detection.h"
#include "host/posix_host.h"

namespace tnefhost {

namespace {

struct Signature {
    const char* bytes;
    size_t length;
    int32_t format;
};

const Signature kSignatures[] = {
    {"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8, kFormatOleStorage},
    {"%PDF-", 5, kFormatPdf},
    {"\x89PNG\r\n\x1A\n", 8, kFormatPng},
    {"\xFF\xD8\xFF", 3, kFormatJpeg},
    {"GIF87a", 6, kFormatGif},
    {"GIF89a", 6, kFormatGif},
    {"PK\x03\x04", 4, kFormatZip},
    {"{\\rtf", 5, kFormatRtf},
};

bool startsWithHtml(const uint8_t* head, size_t length) {
    size_t i = 0;
    while (i < length && (head[i] == ' ' || head[i] == '\t' || head[i] == '\r' || head[i] == '\n')) {
        ++i;
    }
    static const char* const kOpenings[] = {"<!doctype html", "<html"};
    for (const char* opening : kOpenings) {
        size_t n = std::strlen(opening);
        if (length - i < n) continue;
        bool same = true;
        for (size_t k = 0; k < n && same; ++k) {
            same = static_cast<char>(tolower(head[i + k])) == opening[k];
        }
        if (same) return true;
    }
    return false;
}

}  // namespace

int32_t hostClassifyHead(const uint8_t* head, size_t length) {
    for (const Signature& signature : kSignatures) {
        if (length >= signature.length && std::memcmp(head, signature.bytes, signature.length) == 0) {
            return signature.format;
        }
    }
    return startsWithHtml(head, length) ? kFormatHtml : kFormatBinary;
}

void hostInstallFormatDetection(HostContext* context) {
    context->hostDetectFormat = [](HostContext*, void* probe, void* formatOut) -> int32_t {
        if (probe == nullptr || formatOut == nullptr) return 0;
        IoObject* io = nullptr;
        std::memcpy(&io, static_cast<uint8_t*>(probe) + kFormatProbeIoOffset, sizeof io);
        if (io == nullptr || io->seek == nullptr || io->read == nullptr) return 0;
        if (io->seek(io, 0, kSeekSet) == 0) return 0;
        uint8_t head[512];
        int32_t got = io->read(io, head, sizeof head);
        io->seek(io, 0, kSeekSet);
        if (got < 0) return 0;
        int32_t format = hostClassifyHead(head, static_cast<size_t>(got));
        auto* out = static_cast<uint8_t*>(formatOut);
        std::memset(out, 0, 16);
        std::memcpy(out + 4, &format, sizeof format);
        return 1;
    };
}

}  // namespace tnefhost
