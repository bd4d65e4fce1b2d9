#pragma once

#include "reader/host.h"

// The CharsetId of a Windows code page found in the stream; 0 for any code
// page the host has no number for.
CharsetId tnefCodePageToCharset(uint32_t codePage);
