// Finding and loading the reader module. The tool reaches the module only
// through the one exported function and the table it fills, as any host
// that loads it would.
#pragma once

#include <string>

#include "reader/host.h"

namespace tnefcli {

struct ReaderModule {
    ReaderInterface table{};
    std::string path;    // the shared object that was loaded
    std::string folder;  // its folder, where the sibling OLE library lives
};

// Loads the module once per process and returns it; later calls return the
// same module. Looks in the folder above the executable's folder (the build
// layout), then beside the executable, then at $TNEF_MODULE (a file, or a
// folder holding it), then on the dynamic loader's path. On failure returns
// null and describes what was tried in `error`.
const ReaderModule* loadReaderModule(std::string* error);

}  // namespace tnefcli
