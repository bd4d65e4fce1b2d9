// A TNEF stream made standard MIME: its readable body, its inline images,
// its attachments (OLE objects unpacked), and its embedded messages as
// message/rfc822 parts, unwrapped in turn. The pieces' content stays in a
// PayloadStore and streams from there when the message is written.
#pragma once

#include <gmime/gmime.h>

#include <string>
#include <vector>

#include "client/tnef_client.h"
#include "mail/gobject_ref.h"
#include "mail/payload_store.h"

namespace tnefmail {

struct ConvertedTnef {
    GRef<GMimeObject> text;  // text/plain
    GRef<GMimeObject> rich;  // text/html, or multipart/related of the HTML and its images
    std::vector<GRef<GMimeObject>> attachments;

    // multipart/alternative of text and rich, or the one there is; null
    // when the stream has no body.
    GRef<GMimeObject> body() const;
    // multipart/mixed of the body and the attachments, or the one piece
    // there is; null when there is nothing.
    GRef<GMimeObject> whole() const;
};

class TnefConverter {
public:
    explicit TnefConverter(PayloadStore& store) : store_(store) {}

    // Converts everything `session` holds; false, with the reason in
    // `problem`, when any of it can't be read whole, since then the TNEF
    // part must stay as it is.
    bool convert(tnefclient::Session& session, ConvertedTnef* out, std::string* problem);

private:
    bool addBodies(tnefclient::Session& session, int32_t message, ConvertedTnef* out,
                   std::vector<std::string>* cids, std::string* problem);
    bool addSubfile(tnefclient::Session& session, const tnefclient::ListedSubfile& subfile,
                    const std::vector<std::string>& cids, ConvertedTnef* out,
                    std::vector<GRef<GMimeObject>>* inline_, std::string* problem);
    GRef<GMimeObject> embeddedMessage(tnefclient::Session& parent, int32_t index,
                                      std::string* name, std::string* problem);
    GRef<GMimeObject> textPart(const char* subtype, const std::string& text,
                               const std::optional<std::string>& charset, std::string* problem);

    PayloadStore& store_;
};

}  // namespace tnefmail
