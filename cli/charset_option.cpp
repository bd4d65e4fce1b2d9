#include "cli/charset_option.h"

#include "host/charsets.h"

namespace tnefcli {

CLI::Validator charsetNameValidator() {
    return CLI::Validator(
        [](std::string& name) -> std::string {
            if (tnefhost::charsetByName(name) != kCharsetNone) return {};
            return "unknown charset name '" + name +
                   "' (use a name of the HTML charset table, such as utf-8, windows-1252 or "
                   "iso-10646)";
        },
        "CHARSET");
}

CharsetId charsetFromName(const std::string& name) {
    return name.empty() ? kCharsetNone : tnefhost::charsetByName(name);
}

}  // namespace tnefcli
