// The names --body and --format accept.
#pragma once

#include <map>
#include <string>

#include "client/tnef_client.h"

namespace tnefcli {

// "auto", "text", "html", "rtf", "none".
const std::map<std::string, tnefclient::BodyChoice>& bodyChoiceNames();

}  // namespace tnefcli
