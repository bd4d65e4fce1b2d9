#include "stream/message_summary.h"

#include <string.h>

#include "reader/memory.h"
#include "reader/strings.h"
#include "stream/property_access.h"
#include "stream/recipient_table.h"

const SummaryRow summaryRows[kSummarySlots] = {
    {0, 0x0042001F, 0x0042001E, "From"},    {1, 0x00390040, 0x00390040, "Sent"},
    {2, 0x0E04001F, 0x0E04001E, "To"},      {3, 0x0E03001F, 0x0E03001E, "Cc"},
    {4, 0x0E02001F, 0x0E02001E, "Bcc"},     {5, 0x0037001F, 0x0037001E, "Subject"},
    {6, 0x00170003, 0x00170003, "Priority"},
};

int32_t tnefFillSummaryElement(TnefContainer* container, HostAllocator* allocator,
                               TnefObject* message, int32_t index) {
    const SummaryRow& row = summaryRows[index];
    const uint32_t tags[2] = {row.tag16, row.tag8};
    for (uint32_t tag : tags) {
        MetaElement* element = nullptr;
        if (tnefGetProperty(container, allocator, message, tag, &element) == kTnefOk) {
            element->name = tnefCopyText(allocator, row.name);
            container->summary[index] = element;
            return kTnefOk;
        }
        tnefFreeElement(allocator, element);
    }
    auto* placeholder = static_cast<MetaElement*>(allocator->alloc(allocator, sizeof(MetaElement)));
    if (placeholder == nullptr) return kTnefNoMemory;
    memset(placeholder, 0, sizeof *placeholder);
    container->summary[index] = placeholder;
    return kTnefOk;
}

int32_t tnefBuildMessageSummary(TnefContainer* container, HostAllocator* allocator) {
    TnefObject* message = container->objectHead->object;
    auto* slots = static_cast<MetaElement**>(
        allocator->calloc(allocator, kSummarySlots, sizeof(MetaElement*)));
    if (slots == nullptr) return kTnefNoMemory;
    container->summary = slots;
    container->summaryCount = kSummarySlots;
    // The statuses of the single slots don't matter: a message opens with
    // whatever could be built.
    tnefBuildSender(container, allocator, message);
    tnefFillSummaryElement(container, allocator, message, kSummarySent);
    if (message->recipTableSize > 0) tnefBuildRecipientLists(container, allocator, message);
    tnefFillSummaryElement(container, allocator, message, kSummarySubject);
    tnefFillSummaryElement(container, allocator, message, kSummaryPriority);
    return kTnefOk;
}
