// hostCreateTempIo and hostWrapOutputIo: objects the module destroys itself.
#include "host/io_objects.h"
#include "host/posix_host.h"

namespace tnefhost {

void hostInstallIoServices(HostContext* context) {
    context->hostCreateTempIo = [](HostContext* host, const char*, const char*) -> IoObject* {
        auto* scratch = new ScratchIo();
        scratch->setDeleteOnDestroy(true);
        scratch->joinFaults(PosixHost::fromContext(host)->options().madeIoFaults);
        return scratch->io();
    };
    context->hostWrapOutputIo = [](HostContext* host, IoObject* output) -> IoObject* {
        if (output == nullptr) return nullptr;
        auto* wrapper = new WrapperIo(output);
        wrapper->setDeleteOnDestroy(true);
        wrapper->joinFaults(PosixHost::fromContext(host)->options().madeIoFaults);
        return wrapper->io();
    };
}

}  // namespace tnefhost
