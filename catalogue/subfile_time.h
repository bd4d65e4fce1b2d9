#pragma once

#include "reader/host.h"

// Fills the object's FILETIME: the submit time of a message, the last
// modification or else the creation time of an attachment. 6 without
// properties; the time stays zero when none is found.
int32_t tnefFetchSubfileTime(TnefContainer* container, TnefObject* object);
