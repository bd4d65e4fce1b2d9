#include "cli/index_path.h"

#include <charconv>

#include "cli/exit_codes.h"

namespace tnefcli {

using namespace tnefclient;

std::optional<IndexPath> parseIndexPath(const std::string& text) {
    IndexPath path;
    const char* at = text.data();
    const char* end = text.data() + text.size();
    while (true) {
        int32_t step = 0;
        auto [next, ec] = std::from_chars(at, end, step);
        if (ec != std::errc() || next == at || step < 0) return std::nullopt;
        path.push_back(step);
        if (next == end) return path;
        if (*next != '/') return std::nullopt;
        at = next + 1;
    }
}

std::string indexPathText(const IndexPath& path) {
    std::string text;
    for (int32_t step : path) text += (text.empty() ? "" : "/") + std::to_string(step);
    return text;
}

CLI::Validator indexPathValidator() {
    return CLI::Validator(
        [](std::string& text) -> std::string {
            return parseIndexPath(text) ? std::string()
                                        : "not a subfile index such as 2 or 2/0: " + text;
        },
        "N[/N...]");
}

bool enterEmbeddedMessage(PathTarget& target, const std::string& where) {
    auto nested = std::make_unique<Session>(target.session->module(), target.session->host());
    std::string error;
    if (nested->openEmbedded(*target.session, target.index, &error) != Opened::kOk) {
        target.exitCode = kExitPartial;
        target.error = "embedded message " + where + ": " + error;
        return false;
    }
    if (nested->openStatus() != kTnefOk && !target.error) {
        target.error = "embedded message " + where + ": damaged stream: " +
                       statusText(nested->openStatus()) + "; reading what can be had";
    }
    target.session = nested.get();
    target.opened.push_back(std::move(nested));
    return true;
}

PathTarget followIndexPath(Session& top, const IndexPath& path) {
    PathTarget target;
    target.session = &top;
    for (size_t i = 0; i < path.size(); ++i) {
        std::string where = indexPathText(IndexPath(path.begin(), path.begin() + i + 1));
        if (path[i] >= target.session->subfileCount()) {
            target.exitCode = kExitUsage;
            target.error = "no subfile " + where + " (the stream has " +
                           std::to_string(target.session->subfileCount()) + ")";
            return target;
        }
        target.index = path[i];
        if (i + 1 == path.size()) break;
        if (!target.session->holdsEmbeddedMessage(target.index)) {
            target.exitCode = kExitUsage;
            target.error = "subfile " + where + " is not an embedded message";
            return target;
        }
        if (!enterEmbeddedMessage(target, where)) return target;
    }
    return target;
}

}  // namespace tnefcli
