#pragma once

#include "reader/host.h"
#include "render/body_form.h"

// Writes the summary header of the form and then the stored HTML body, or
// the RTF body inflated from its compressed form.
int32_t tnefWriteStoredBody(TnefContainer* container, TnefObject* message, BodyForm form,
                            IoObject* output);
