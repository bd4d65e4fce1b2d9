// The message's body form: what the user asks for, the extract flags that
// ask the module for it, and what actually came back.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace tnefcli {

enum class BodyChoice { kAuto, kText, kHtml, kRtf, kNone };

// Names accepted by --body and --format.
const std::map<std::string, BodyChoice>& bodyChoiceNames();

// Extract flags: HTML or RTF asked for sets "prefer the stored body";
// auto and text leave the choice to the module's text-first order.
uint32_t extractFlags(BodyChoice choice, bool noHeader);

enum class BodyForm { kText, kHtml, kRtf };

// Recognises a rendering from its first bytes: "{\rtf" is RTF, a document
// that opens with a tag is HTML, anything else is text.
BodyForm detectBodyForm(std::string_view head);
const char* bodyFormName(BodyForm form);       // "text", "html", "rtf"
const char* bodyFormExtension(BodyForm form);  // ".txt", ".html", ".rtf"

}  // namespace tnefcli
