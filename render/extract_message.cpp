// The choice of a message's body form.
#include "render/body_form.h"
#include "render/plain_message.h"
#include "render/stored_body.h"
#include "stream/property_access.h"

namespace {

bool present(TnefObject* message, uint32_t tag) {
    TnefPropLocation location{};
    return tnefGetPropertyLocation(message, tag, &location) == kTnefOk && location.length >= 1;
}

BodyForm chooseForm(TnefContainer* container, TnefObject* message) {
    if (container->preferStoredBody == 0 && message->dataPos > 0) return kBodyText;
    if (present(message, kTagBodyHtml) || present(message, kTagHtml)) return kBodyHtml;
    if (present(message, kTagRtfCompressed)) return kBodyRtf;
    return kBodyNone;
}

}  // namespace

int32_t tnefExtractMessage(TnefContainer* container, TnefObject* message, IoObject* output) {
    BodyForm form = chooseForm(container, message);
    if (form == kBodyHtml || form == kBodyRtf) {
        return tnefWriteStoredBody(container, message, form, output);
    }
    return tnefWritePlainMessage(container, message, output);
}
