// The MIME parts that unwrap makes, each in one place: multiparts, body
// text, attachments streamed from their slice, links to files elsewhere,
// and embedded messages.
#pragma once

#include <gmime/gmime.h>

#include <optional>
#include <string>
#include <vector>

#include "client/tnef_client.h"
#include "mail/gobject_ref.h"

namespace tnefmail {

// multipart/SUBTYPE holding `parts` in order (multipart/related says its
// root is text/html).
GRef<GMimeObject> multipartOf(const char* subtype, const std::vector<GRef<GMimeObject>>& parts);

// text/SUBTYPE over `content`, whose bytes are `text`: quoted-printable, or
// base64 when a line starts with "From " (after any ">"), which an mbox
// writer or reader would change.
GRef<GMimeObject> bodyPart(const char* subtype, const std::optional<std::string>& charset,
                           GRef<GMimeStream> content, const std::string& text);

// An attachment of `type` ("image/png") named `name`, base64 over `content`.
GRef<GMimeObject> attachmentPart(const std::string& type, const std::string& name,
                                 GRef<GMimeStream> content);

// message/external-body pointing at the local file an OLE link names.
GRef<GMimeObject> linkPart(const std::string& path);

// message/rfc822 of a message with From, To, Cc, Bcc, Subject and Date of
// `summary` and `content` as its body (an empty text when null).
GRef<GMimeObject> messagePart(const tnefclient::SummaryText& summary, GRef<GMimeObject> content);

// Content-Disposition: attachment with `name` as its file name (RFC 2231,
// UTF-8, when it isn't plain ASCII), and as the Content-Type's name.
void setFileName(GMimeObject* object, const std::string& name);

}  // namespace tnefmail
