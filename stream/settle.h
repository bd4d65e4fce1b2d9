#pragma once

#include "reader/host.h"

// Runs once after the record loop: fixes the charset of the first object and
// each attachment's kind and data range from the decoded properties.
void tnefSettleObjects(TnefContainer* container);
