// The content type of an attachment: from its name through the system's
// table of extensions (/etc/mime.types), or, when the name says nothing,
// from its first bytes through libmagic.
#pragma once

#include <string>
#include <string_view>

namespace tnefmail {

// "type/subtype" for a file called `name` whose content starts with `head`;
// application/octet-stream when neither tells. libmagic's database is loaded
// once per thread, on first need.
std::string contentTypeFor(std::string_view name, std::string_view head);

// The type /etc/mime.types gives the extension of `name`, ASCII case
// ignored; empty when it gives none.
std::string typeOfExtension(std::string_view name);

// True for a well-formed "type/subtype" (RFC 2045 tokens).
bool isMimeType(std::string_view text);

}  // namespace tnefmail
