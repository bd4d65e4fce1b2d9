// The code pages of RTF read through a host's charset services
// (hostCharsetToCharset and hostIsLeadByte of a HostContext): the POSIX
// host's iconv, or whatever the host that embeds the module has.
#pragma once

#include "reader/host.h"
#include "rtf/code_pages.h"

namespace tnefrtf {

// The host's CharsetId of a Windows code page; 0 for one it doesn't number.
CharsetId charsetOfCodePage(uint32_t codePage);

class HostCodePageDecoder final : public CodePageDecoder {
public:
    // Conversions set the context's currentCharset for the call and put it
    // back; the context must not be in use by another thread meanwhile.
    explicit HostCodePageDecoder(HostContext* host) : host_(host) {}

    bool decode(uint32_t codePage, std::string_view bytes, std::string& utf8) override;
    bool isLeadByte(uint32_t codePage, uint8_t byte) override;

private:
    HostContext* host_;
    std::string buffer_;
};

}  // namespace tnefrtf
