// tnef-reader props FILE [--index N[/N...]] [--tag TAG ...] [--json]
#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "client/element_values.h"
#include "cli/exit_codes.h"
#include "cli/index_path.h"
#include "cli/mail_parts.h"
#include "cli/json_output.h"
#include "cli/open_input.h"
#include "cli/report_text.h"

namespace tnefcli {

using namespace tnefclient;

namespace {

struct PropsOptions {
    std::string file;
    PartChoice part;
    std::optional<std::string> index;
    std::vector<std::string> tags;
    bool json = false;
};

std::optional<uint32_t> parseTag(const std::string& text) {
    if (text.empty()) return std::nullopt;
    size_t used = 0;
    unsigned long long value = 0;
    try {
        value = std::stoull(text, &used, 0);
    } catch (const std::exception&) {
        return std::nullopt;
    }
    if (used != text.size() || value > 0xFFFFFFFFull || text[0] == '-') return std::nullopt;
    return static_cast<uint32_t>(value);
}

// One line of the answer: a summary element, or the answer to one tag.
struct PropertyLine {
    std::optional<std::string> name;
    std::optional<uint32_t> tag;
    const Element* element = nullptr;  // null: the tag found nothing
};

std::vector<PropertyLine> summaryLines(const std::vector<Element>& elements) {
    std::vector<PropertyLine> lines;
    for (const Element& element : elements) lines.push_back({element.name, std::nullopt, &element});
    return lines;
}

// The answer is packed; each element carries the tag it answers.
std::vector<PropertyLine> tagLines(const std::vector<uint32_t>& tags,
                                   const std::vector<Element>& elements) {
    std::vector<PropertyLine> lines;
    std::vector<bool> used(elements.size(), false);
    for (uint32_t tag : tags) {
        PropertyLine line{std::nullopt, tag, nullptr};
        for (size_t i = 0; i < elements.size(); ++i) {
            if (!used[i] && elements[i].tag == tag) {
                used[i] = true;
                line.element = &elements[i];
                break;
            }
        }
        lines.push_back(line);
    }
    return lines;
}

std::string lineLabel(const PropertyLine& line) {
    if (line.name) return *line.name;
    return line.tag ? tagText(*line.tag) : std::string("?");
}

void printLines(Session& session, const std::vector<PropertyLine>& lines, CharsetId charset) {
    size_t width = 0;
    for (const PropertyLine& line : lines) width = std::max(width, lineLabel(line).size() + 1);
    for (const PropertyLine& line : lines) {
        std::string label = lineLabel(line) + ":";
        std::string value;
        if (line.element == nullptr) {
            value = "(absent)";
        } else {
            value = elementText(session.host(), *line.element, charset);
            if (value.empty() && std::string(elementTypeName(*line.element)) == "none") value = "-";
            if (line.name == std::optional<std::string>("Priority") &&
                line.element->type == kElementInteger && line.element->hasValue) {
                value += std::string(" (") + importanceWord(line.element->number) + ")";
            }
        }
        std::printf("%-*s %s\n", static_cast<int>(width), label.c_str(), printable(value).c_str());
    }
}

nlohmann::ordered_json linesJson(Session& session, const std::vector<PropertyLine>& lines,
                                 CharsetId charset) {
    nlohmann::ordered_json out = nlohmann::ordered_json::array();
    for (const PropertyLine& line : lines) {
        nlohmann::ordered_json item;
        item["name"] = line.name ? nlohmann::ordered_json(*line.name) : nullptr;
        item["tag"] = line.tag ? nlohmann::ordered_json(tagText(*line.tag)) : nullptr;
        item["found"] = line.element != nullptr;
        item["type"] = line.element != nullptr ? elementTypeName(*line.element) : "none";
        item["value"] = line.element != nullptr ? elementJson(session.host(), *line.element, charset)
                                                : nullptr;
        out.push_back(std::move(item));
    }
    return out;
}

int runProps(const PropsOptions& options) {
    std::vector<uint32_t> tags;
    for (const std::string& text : options.tags) tags.push_back(*parseTag(text));
    OpenedInput input = openInput(options.file, false, options.part);
    if (!input.usable()) return reportUnusable(options.file, input, options.json);
    IndexPath path = options.index ? *parseIndexPath(*options.index)
                                   : IndexPath{std::max(input.session->messageIndex(), 0)};
    PathTarget target = followIndexPath(*input.session, path);
    if (target.error) printError(options.file, *target.error);
    if (target.exitCode != 0) return target.exitCode;
    Session& session = *target.session;
    int32_t index = target.index;
    CharsetId charset = session.messageCharset();
    int32_t status = 0;
    std::vector<Element> elements =
        tags.empty() ? session.summary(index, &status) : session.properties(index, tags, &status);
    std::vector<PropertyLine> lines = tags.empty() ? summaryLines(elements) : tagLines(tags, elements);

    if (options.json) {
        auto report = fileReportHead(options.file, input.status, input.error);
        addPartKey(report, input);
        report["index"] = index;
        if (path.size() > 1) report["indexPath"] = indexPathText(path);
        report["queryStatus"] = status;
        report["properties"] = linesJson(session, lines, charset);
        printJson(report);
    } else {
        if (tags.empty() && elements.empty() && status == kTnefOk) {
            std::printf("subfile %s has no summary; ask for properties with --tag\n",
                        indexPathText(path).c_str());
        }
        printLines(session, lines, charset);
        // The report's lines come whole before any warning, also where both
        // streams go to one place.
        warnDamaged(options.file, input);
        if (status != kTnefOk) printError(options.file, "metadata query: " + statusText(status));
    }
    return input.error || target.error || status != kTnefOk ? kExitPartial : kExitOk;
}

}  // namespace

void addPropsCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<PropsOptions>();
    CLI::App* props = app.add_subcommand(
        "props", "Show the message's seven summary elements, or MAPI properties by tag");
    props->add_option("FILE", options->file, kFileHelp)->required();
    addPartOption(*props, options->part);
    props->add_option("--index", options->index,
                      "Subfile to query, as numbered by list (2, or 2/0 inside the message "
                      "embedded as 2; default: the message)")
        ->check(indexPathValidator());
    props->add_option("--tag", options->tags,
                      "Property tag to fetch, such as 0x0037001E (subject, 8-bit); repeatable")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->check(CLI::Validator(
            [](std::string& text) -> std::string {
                return parseTag(text) ? std::string() : "not a 32-bit property tag: " + text;
            },
            "TAG"))
        ->option_text("TAG");
    props->add_flag("--json", options->json, "Write the answer as JSON");
    props->callback([options, &exitCode] { exitCode = runProps(*options); });
}

}  // namespace tnefcli
