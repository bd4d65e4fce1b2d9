// Names of subfiles: picked by a fixed order of rules and cleaned.
#pragma once

#include "reader/host.h"

// Gives `object` its name, made once and kept; `place` is its place in the
// list, not raised for the root entry. 0, or 6 when no name can be made.
int32_t tnefMakeSubfileName(TnefContainer* container, TnefObject* object, int32_t place);

// The extension of a message class: ".mail", ".task", ".post", ".cont",
// ".cal", ".note" or ".jrnl". Only the first `length` bytes of the class are
// looked at.
const char* tnefClassExtension(const char* messageClass, int32_t length);
