// Charset services of the host. (Filled in by the charset work.)
#include "host/posix_host.h"

namespace tnefhost {

void hostInstallCharsetServices(HostContext* context) {
    (void)context;
}

}  // namespace tnefhost
