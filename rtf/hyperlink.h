// HYPERLINK fields: the address in a field's instruction, and whether an
// address may stand in a link of the HTML we make.
#pragma once

#include <string>
#include <string_view>

namespace tnefrtf {

// The address of a HYPERLINK instruction (`HYPERLINK "url" \l "place" \o
// "tip"`): the URL, with `#place` after it; empty for any other field and
// for a HYPERLINK without an address.
std::string hyperlinkTarget(std::string_view instruction);

// Whether a link to `target` is harmless: no control characters or blanks,
// and either no scheme (a relative address or `#place`) or one of http,
// https, ftp, mailto, news and tel. javascript:, data:, vbscript: and
// everything else are not.
bool isSafeLinkTarget(std::string_view target);

}  // namespace tnefrtf
