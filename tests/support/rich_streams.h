// Streams that reach most of the module at once, for sweeps, fuzz seeds and
// benches.
#pragma once

#include <vector>

#include "tests/support/tnef_writer.h"

namespace tneftest {

// 16-bit strings, 16-bit recipient table, compressed RTF and plain bodies,
// an attachment with data and a long file name, one with binary data.
// Subfiles: the message, then the two attachments (the second holds
// patternBytes(5000)).
Bytes wideRtfMessage();
// Subfiles: the message, an OLE package holding packagePayload(), a linked
// OLE object, a plain attachment holding "plain".
Bytes oleMessage();
Bytes packagePayload();

struct RichStream {
    const char* name;
    Bytes bytes;
};
std::vector<RichStream> richStreams();

}  // namespace tneftest
