#include "cli/body_option.h"

namespace tnefcli {

using tnefclient::BodyChoice;

const std::map<std::string, BodyChoice>& bodyChoiceNames() {
    static const std::map<std::string, BodyChoice> names = {{"auto", BodyChoice::kAuto},
                                                            {"text", BodyChoice::kText},
                                                            {"html", BodyChoice::kHtml},
                                                            {"rtf", BodyChoice::kRtf},
                                                            {"none", BodyChoice::kNone}};
    return names;
}

}  // namespace tnefcli
