// Putting a converted TNEF part in the place of the original in its
// message's MIME tree, joining the body with the message's own text part.
#pragma once

#include "mail/mail_input.h"
#include "mail/tnef_to_mime.h"

namespace tnefmail {

// Replaces `tnef.part` by `converted` and drops the owner's
// X-MS-TNEF-Correlator header. Inside a multipart/mixed the pieces take
// the TNEF part's place; a text/plain part before it that holds the body
// is joined with the HTML into a multipart/alternative, and the TNEF text
// body is dropped, so that the body appears once. Elsewhere one part (a
// multipart/mixed when there are several pieces) takes its place.
void spliceConverted(const TnefPart& tnef, const ConvertedTnef& converted);

}  // namespace tnefmail
