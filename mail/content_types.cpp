#include "mail/content_types.h"

#include <magic.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <mutex>
#include <sstream>
#include <unordered_map>

namespace tnefmail {

namespace {

std::string lowered(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return out;
}

const std::unordered_map<std::string, std::string>& extensionTable() {
    static std::unordered_map<std::string, std::string> table;
    static std::once_flag loaded;
    std::call_once(loaded, [] {
        std::ifstream file("/etc/mime.types");
        std::string line;
        while (std::getline(file, line)) {
            std::istringstream words(line.substr(0, line.find('#')));
            std::string type, extension;
            if (!(words >> type)) continue;
            while (words >> extension) table.emplace(lowered(extension), type);
        }
    });
    return table;
}

bool isTokenChar(char c) {
    static const std::string_view kSpecials = "()<>@,;:\\\"/[]?=";
    return c > ' ' && c < 0x7F && kSpecials.find(c) == std::string_view::npos;
}

}  // namespace

bool isMimeType(std::string_view text) {
    size_t slash = text.find('/');
    if (slash == 0 || slash == std::string_view::npos || slash + 1 == text.size()) return false;
    auto token = [](std::string_view part) { return std::all_of(part.begin(), part.end(), isTokenChar); };
    return token(text.substr(0, slash)) && token(text.substr(slash + 1));
}

std::string typeOfExtension(std::string_view name) {
    size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot + 1 == name.size()) return {};
    const auto& table = extensionTable();
    auto found = table.find(lowered(name.substr(dot + 1)));
    return found != table.end() ? found->second : std::string();
}

namespace {

// libmagic's cookie of this thread (a cookie is not to be shared), loaded
// on first use and closed when the thread ends.
class MagicCookie {
public:
    magic_t get() {
        if (!tried_) {
            tried_ = true;
            cookie_ = magic_open(MAGIC_MIME_TYPE | MAGIC_ERROR);
            if (cookie_ != nullptr && magic_load(cookie_, nullptr) != 0) {
                magic_close(cookie_);
                cookie_ = nullptr;
            }
        }
        return cookie_;
    }
    ~MagicCookie() {
        if (cookie_ != nullptr) magic_close(cookie_);
    }

private:
    magic_t cookie_ = nullptr;
    bool tried_ = false;
};

thread_local MagicCookie threadMagic;

}  // namespace

std::string contentTypeFor(std::string_view name, std::string_view head) {
    std::string type = typeOfExtension(name);
    if (!type.empty()) return type;
    magic_t cookie = head.empty() ? nullptr : threadMagic.get();
    const char* found = cookie != nullptr ? magic_buffer(cookie, head.data(), head.size()) : nullptr;
    return found != nullptr && isMimeType(found) ? found : "application/octet-stream";
}

}  // namespace tnefmail
