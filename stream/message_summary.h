// The digest of the message built at the end of open: seven elements for
// sender, sent time, To, Cc, Bcc, subject and importance.
#pragma once

#include "reader/host.h"

struct SummaryRow {
    int32_t index;
    uint32_t tag16;
    uint32_t tag8;
    const char* name;
};

// The seven rows, in slot order: "From", "Sent", "To", "Cc", "Bcc",
// "Subject", "Priority".
extern const SummaryRow summaryRows[kSummarySlots];

enum : int32_t {
    kSummaryFrom = 0,
    kSummarySent = 1,
    kSummaryTo = 2,
    kSummaryCc = 3,
    kSummaryBcc = 4,
    kSummarySubject = 5,
    kSummaryPriority = 6,
};

// Builds the summary into the container's summaryCount and summary from the
// first object of the list. 2 when the array of slots is refused, else 0.
int32_t tnefBuildMessageSummary(TnefContainer* container, HostAllocator* allocator);

// Slot 0: the sender text joined from name and address properties.
int32_t tnefBuildSender(TnefContainer* container, HostAllocator* allocator, TnefObject* message);

// One slot from its row's 16-bit tag, then its 8-bit tag, else a placeholder.
int32_t tnefFillSummaryElement(TnefContainer* container, HostAllocator* allocator,
                               TnefObject* message, int32_t index);
