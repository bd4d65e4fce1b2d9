// The content type of an attachment: from its name through the system's
// table of extensions (/etc/mime.types), or, when the name says nothing,
// from its first bytes through libmagic.
#pragma once

#include <string>
#include <string_view>

namespace tnefmail {

class ContentTypes {
public:
    ContentTypes() = default;
    ~ContentTypes();
    ContentTypes(const ContentTypes&) = delete;
    ContentTypes& operator=(const ContentTypes&) = delete;

    // "type/subtype" for a file called `name` whose content starts with
    // `head`; application/octet-stream when neither tells.
    std::string forFile(std::string_view name, std::string_view head);

private:
    void* magic_ = nullptr;  // libmagic's cookie, opened on first use (one per thread)
    bool magicTried_ = false;
};

// The type /etc/mime.types gives the extension of `name`, ASCII case
// ignored; empty when it gives none.
std::string typeOfExtension(std::string_view name);

// True for a well-formed "type/subtype" (RFC 2045 tokens).
bool isMimeType(std::string_view text);

}  // namespace tnefmail
