#include "mail/splice.h"

#include "mail/mime_parts.h"

namespace tnefmail {

namespace {

bool isType(GMimeObject* object, const char* type, const char* subtype) {
    GMimeContentType* contentType = g_mime_object_get_content_type(object);
    return contentType != nullptr && g_mime_content_type_is_type(contentType, type, subtype);
}

bool isAttachment(GMimeObject* object) {
    GMimeContentDisposition* disposition = g_mime_object_get_content_disposition(object);
    return disposition != nullptr && g_mime_content_disposition_is_attachment(disposition);
}

// The part before `before` in `mixed` that shows the message's body: an
// inline text/plain or text/html part, or a multipart/alternative or
// multipart/related; -1 when there is none.
int outerBody(GMimeMultipart* mixed, int before) {
    for (int i = 0; i < before; ++i) {
        GMimeObject* part = g_mime_multipart_get_part(mixed, i);
        if (isAttachment(part)) continue;
        if (isType(part, "text", "plain") || isType(part, "text", "html") ||
            isType(part, "multipart", "alternative") || isType(part, "multipart", "related")) {
            return i;
        }
    }
    return -1;
}

// A message's body must be something: an empty text when nothing is left.
GRef<GMimeObject> orEmptyText(GRef<GMimeObject> content) {
    if (content) return content;
    return GRef<GMimeObject>::adopt(GMIME_OBJECT(g_mime_part_new_with_type("text", "plain")));
}

}  // namespace

void spliceConverted(const TnefPart& tnef, const ConvertedTnef& converted) {
    GMimeObject* original = GMIME_OBJECT(tnef.part);
    g_mime_object_remove_header(GMIME_OBJECT(tnef.owner), "X-MS-TNEF-Correlator");
    if (!GMIME_IS_MULTIPART(tnef.parent)) {
        g_mime_message_set_mime_part(tnef.owner, orEmptyText(converted.whole()).get());
        return;
    }
    GMimeMultipart* parent = GMIME_MULTIPART(tnef.parent);
    int at = g_mime_multipart_index_of(parent, original);
    if (at < 0) return;
    if (!isType(tnef.parent, "multipart", "mixed")) {
        GRef<GMimeObject> whole = converted.whole();
        GRef<GMimeObject>::adopt(g_mime_multipart_remove_at(parent, at));
        if (whole) g_mime_multipart_insert(parent, at, whole.get());
        return;
    }
    std::vector<GRef<GMimeObject>> pieces;
    int outer = outerBody(parent, at);
    if (outer < 0) {
        if (GRef<GMimeObject> body = converted.body()) pieces.push_back(body);
    } else if (converted.rich && isType(g_mime_multipart_get_part(parent, outer), "text", "plain")) {
        GRef<GMimeObject> text = GRef<GMimeObject>::share(g_mime_multipart_get_part(parent, outer));
        GRef<GMimeObject> joined = multipartOf("alternative", {text, converted.rich});
        GRef<GMimeObject>::adopt(g_mime_multipart_replace(parent, outer, joined.get()));
    }
    pieces.insert(pieces.end(), converted.attachments.begin(), converted.attachments.end());
    GRef<GMimeObject>::adopt(g_mime_multipart_remove_at(parent, at));
    for (size_t i = 0; i < pieces.size(); ++i) {
        g_mime_multipart_insert(parent, at + static_cast<int>(i), pieces[i].get());
    }
}

}  // namespace tnefmail
