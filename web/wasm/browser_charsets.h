// How the WebAssembly host reads and writes each CharsetId: single-byte
// charsets through byte tables (made from glibc's iconv at build time, or
// the host's own for the Adobe encodings), everything multi-byte through
// the browser's decoders (TextDecoder) and tables the page derives from
// them, UTF-8 and UTF-16 written here.
#pragma once

#include "reader/host.h"

namespace tnefweb {

enum class CharsetForm {
    kNone,       // neither the browser nor a table knows it
    kTable,      // one byte, one code point
    kUtf8,
    kUtf16le,
    kBrowser,    // decoded by TextDecoder, encoded by a reverse table
    kIso2022Jp,  // decoded by TextDecoder, encoded here with JIS X 0208 from EUC-JP
};

struct CharsetRoute {
    CharsetForm form = CharsetForm::kNone;
    const char16_t* table = nullptr;  // kTable
    const char* label = nullptr;      // the encoding label TextDecoder knows
};

CharsetRoute charsetRoute(CharsetId id);

}  // namespace tnefweb
