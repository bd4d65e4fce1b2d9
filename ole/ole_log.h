// The error log of the OLE unpacking: one fixed line per failure, handed to
// the host's hostLogMessage. A host without the service gets no line.
#pragma once

#include "reader/host.h"

inline void oleLogLine(HostContext* host, const char* line) {
    if (host != nullptr && host->hostLogMessage != nullptr) host->hostLogMessage(host, line);
}
