#pragma once

#include "reader/host.h"

// The form in which a message is rendered.
enum BodyForm : int32_t {
    kBodyNone = 0,
    kBodyText = 1,
    kBodyHtml = 2,
    kBodyRtf = 3,
};

enum : uint32_t {
    kTagBodyHtml = 0x1013001E,
    kTagHtml = 0x10130102,
    kTagRtfCompressed = 0x10090102,
};

// Picks the body form of a message and writes it; the status of the writer.
int32_t tnefExtractMessage(TnefContainer* container, TnefObject* message, IoObject* output);
