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

ContentTypes::~ContentTypes() {
    if (magic_ != nullptr) magic_close(static_cast<magic_t>(magic_));
}

std::string ContentTypes::forFile(std::string_view name, std::string_view head) {
    std::string type = typeOfExtension(name);
    if (!type.empty()) return type;
    if (!magicTried_) {
        magicTried_ = true;
        magic_t cookie = magic_open(MAGIC_MIME_TYPE | MAGIC_ERROR);
        if (cookie != nullptr && magic_load(cookie, nullptr) != 0) {
            magic_close(cookie);
            cookie = nullptr;
        }
        magic_ = cookie;
    }
    if (magic_ != nullptr && !head.empty()) {
        const char* found = magic_buffer(static_cast<magic_t>(magic_), head.data(), head.size());
        if (found != nullptr && isMimeType(found)) return found;
    }
    return "application/octet-stream";
}

}  // namespace tnefmail
