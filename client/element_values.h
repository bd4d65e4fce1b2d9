// The value of a metadata element decoded for people and for JSON: text as
// UTF-8, times in ISO 8601 UTC, numbers as numbers, binaries as hex.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "client/tnef_client.h"

namespace tnefclient {

// "text8", "text16", "integer", "time", ... ; "none" for an element
// without a value.
const char* elementTypeName(const Element& element);

// The value as JSON: null when there is none.
nlohmann::ordered_json elementJson(HostContext* host, const Element& element,
                                   CharsetId charset);

// The value as one line of text; empty when there is none.
std::string elementText(HostContext* host, const Element& element, CharsetId charset);

// A property tag as "0x0037001E".
std::string tagText(uint32_t tag);

}  // namespace tnefclient
