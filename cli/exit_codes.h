// The tool's exit codes.
#pragma once

namespace tnefcli {

enum ExitCode : int {
    kExitOk = 0,          // everything asked for was done
    kExitUsage = 1,       // the command line was wrong
    kExitUnreadable = 2,  // the input can't be read or is not a TNEF stream
    kExitPartial = 3,     // the stream is damaged or a subfile could not be had
};

}  // namespace tnefcli
