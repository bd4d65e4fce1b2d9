// Format numbers of our own for what hostDetectFormat recognises; 217 (a bare
// OLE compound storage) is fixed by the module's contract.
#pragma once

#include <cstddef>
#include <cstdint>

#include "reader/host.h"

namespace tnefhost {

enum : int32_t {
    kFormatBinary = 1000,
    kFormatPdf = 1001,
    kFormatPng = 1002,
    kFormatJpeg = 1003,
    kFormatGif = 1004,
    kFormatZip = 1005,
    kFormatRtf = 1006,
    kFormatHtml = 1007,
};

// The format number of an object whose first bytes are `head`.
int32_t hostClassifyHead(const uint8_t* head, size_t length);

}  // namespace tnefhost
