// hostCreateTempIo and hostWrapOutputIo: objects the module destroys itself.
#include "host/io_objects.h"
#include "host/posix_host.h"

namespace tnefhost {

void hostInstallIoServices(HostContext* context) {
    context->hostCreateTempIo = [](HostContext*, const char*, const char*) -> IoObject* {
        auto* scratch = new ScratchIo();
        scratch->setDeleteOnDestroy(true);
        return scratch->io();
    };
    context->hostWrapOutputIo = [](HostContext*, IoObject* output) -> IoObject* {
        if (output == nullptr) return nullptr;
        auto* wrapper = new WrapperIo(output);
        wrapper->setDeleteOnDestroy(true);
        return wrapper->io();
    };
}

}  // namespace tnefhost
