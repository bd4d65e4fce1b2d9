// What a stream holds, as text: every subfile with its name as UTF-8, the
// message's summary, and embedded messages listed in turn.
#include "client/tnef_client.h"

namespace tnefclient {

namespace {

SummaryText readSummary(Session& session) {
    SummaryText text;
    int32_t message = session.messageIndex();
    if (message < 0) return text;
    CharsetId charset = session.messageCharset();
    std::vector<Element> elements = session.summary(message, &text.status);
    for (const Element& element : elements) {
        if (!element.name) continue;
        const std::string& name = *element.name;
        if (name == "Priority") {
            if (element.hasValue && element.type == kElementInteger) {
                text.importance = importanceWord(element.number);
            }
            continue;
        }
        std::optional<std::string> decoded = elementString(session.host(), element, charset);
        if (!decoded) continue;
        if (name == "From") text.from = decoded;
        else if (name == "Sent") text.sent = decoded;
        else if (name == "To") text.to = decoded;
        else if (name == "Cc") text.cc = decoded;
        else if (name == "Bcc") text.bcc = decoded;
        else if (name == "Subject") text.subject = decoded;
    }
    return text;
}

std::shared_ptr<NestedListing> readNested(Session& parent, int32_t index) {
    auto nested = std::make_shared<NestedListing>();
    Session session(parent.module(), parent.host());
    std::string error;
    nested->opened = session.openEmbedded(parent, index, &error);
    if (nested->opened != Opened::kUnreadable) nested->status = session.openStatus();
    if (nested->opened != Opened::kOk) {
        nested->error = error;
        return nested;
    }
    if (session.openStatus() != kTnefOk) nested->error = statusText(session.openStatus());
    nested->listing = readListing(session, true);
    return nested;
}

}  // namespace

Listing readListing(Session& session, bool nested) {
    Listing listing;
    CharsetId charset = session.subfileCount() > 0 ? session.messageCharset() : 0;
    for (int32_t i = 0; i < session.subfileCount(); ++i) {
        ListedSubfile subfile;
        subfile.entry = session.subfile(i);
        if (subfile.entry.status != kTnefOk) listing.complete = false;
        if (subfile.entry.name) {
            subfile.name = eightBitToUtf8(session.host(), *subfile.entry.name, charset);
        }
        if (subfile.entry.type != kSubfileRoot) subfile.time = fileTimeToIso(subfile.entry.time);
        if (nested && session.holdsEmbeddedMessage(i)) {
            subfile.nested = readNested(session, i);
            if (subfile.nested->error || !subfile.nested->listing.complete) listing.complete = false;
        }
        listing.subfiles.push_back(std::move(subfile));
    }
    listing.summary = readSummary(session);
    return listing;
}

const char* subfileTypeName(int32_t type) {
    switch (type) {
        case kSubfileMessage: return "message";
        case kSubfileAttachment: return "attachment";
        case kSubfileOle: return "ole";
        case kSubfileRoot: return "root";
        default: return "unknown";
    }
}

const char* importanceWord(int64_t value) {
    if (value == 0) return "Low";
    if (value == 2) return "High";
    return "Normal";
}

}  // namespace tnefclient
