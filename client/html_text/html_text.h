// Text from HTML through libxml2's HTML parser: the HtmlToTextFactory of
// client/readable_body.h for the front ends that have libxml2 (the tool,
// mail). It is a library of its own (tnefhtmltext) beside the client, so
// that a build without libxml2, the WebAssembly viewer above all, leaves it
// out. The parser reads the HTML as it streams in, as a browser would
// (entities decoded, elements closed where the document forgets to), and
// client/html_text/text_layout.h lays its text out.
#pragma once

#include <memory>
#include <string_view>

#include "client/readable_body.h"

namespace tnefclient {

// `charset`: a name libxml2 knows (iconv's names), or empty to read the
// document's own declaration (UTF-8 without one, Latin-1 for bytes that are
// not UTF-8). A charset libxml2 doesn't know is read as if it were empty.
std::unique_ptr<HtmlTextConverter> libxmlHtmlToText(tnefrtf::OutputSink& text,
                                                    std::string_view charset);

}  // namespace tnefclient
