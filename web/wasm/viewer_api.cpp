// The entry points the page calls (through cwrap). A stream is opened from a
// file of the page's memory file system by the client library, with a host
// whose OLE library is linked in; listings and properties come back as JSON
// in the tool's form (the JSON writers of list --json and props --json),
// extracted subfiles as bytes, RTF bodies made readable by rtf/.
#include <emscripten.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "client/element_values.h"
#include "client/listing_json.h"
#include "client/tnef_client.h"
#include "host/posix_host.h"
#include "oleio/ole_interface.h"
#include "rtf/converter.h"
#include "rtf/host_code_pages.h"

namespace {

using nlohmann::ordered_json;

// One open stream, with the last answer handed to the page.
struct ViewerStream {
    std::string file;
    std::unique_ptr<tnefhost::PosixHost> host;
    std::unique_ptr<tnefclient::Session> session;
    std::optional<int32_t> status;     // the module's open status, once it got that far
    std::optional<std::string> error;  // why the stream can't be read, or is damaged
    bool usable = false;
    std::string text;             // the last JSON answer
    std::vector<uint8_t> output;  // the last extraction
};

// The bytes of a property value the page is shown at most.
constexpr size_t kShownBinary = 256;
constexpr size_t kShownText = 16384;

// The last result of tnefViewerConvert.
std::vector<uint8_t> converted;

const tnefclient::ReaderModule& linkedModule() {
    static const tnefclient::ReaderModule module =
        tnefclient::ReaderModule::linked(&tnefGetContainerReaderInterfaceEx);
    return module;
}

std::unique_ptr<tnefhost::PosixHost> makeHost() {
    tnefhost::HostOptions options;
    options.linkedLibraries = {
        {"zdolefio.dll", {{"GetOLEInterface", reinterpret_cast<void*>(&GetOLEInterface)}}}};
    return std::make_unique<tnefhost::PosixHost>(options);
}

ViewerStream* newStream(std::string file) {
    auto* stream = new ViewerStream;
    stream->file = std::move(file);
    stream->host = makeHost();
    stream->session = std::make_unique<tnefclient::Session>(linkedModule(), stream->host->context());
    return stream;
}

// What an opening came to, as the tool reports it.
ViewerStream* opened(ViewerStream* stream, tnefclient::Opened result, const std::string& error) {
    if (result != tnefclient::Opened::kUnreadable) stream->status = stream->session->openStatus();
    stream->usable = result == tnefclient::Opened::kOk;
    if (!stream->usable) {
        stream->error = error;
    } else if (stream->session->openStatus() != kTnefOk) {
        stream->error = tnefclient::statusText(stream->session->openStatus());
    }
    return stream;
}

const char* answer(ViewerStream* stream, const ordered_json& document) {
    stream->text = document.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
    return stream->text.c_str();
}

ordered_json orNull(const std::optional<std::string>& text) {
    return text ? ordered_json(*text) : ordered_json(nullptr);
}

// Output of the RTF converters into the stream's extraction bytes.
class BytesSink final : public tnefrtf::OutputSink {
public:
    explicit BytesSink(std::vector<uint8_t>& bytes) : bytes_(bytes) {}
    bool write(std::string_view text) override {
        bytes_.insert(bytes_.end(), text.begin(), text.end());
        return true;
    }

private:
    std::vector<uint8_t>& bytes_;
};

}  // namespace

extern "C" {

// Opens the file at `path`; never null. Whether it could be read shows in
// its listing.
EMSCRIPTEN_KEEPALIVE ViewerStream* tnefViewerOpen(const char* path) {
    ViewerStream* stream = newStream(path);
    std::string error;
    tnefclient::Opened result = stream->session->openFile(path, {}, &error);
    return opened(stream, result, error);
}

// Opens the embedded message at `index` of `parent` as a stream of its own.
EMSCRIPTEN_KEEPALIVE ViewerStream* tnefViewerOpenEmbedded(ViewerStream* parent, int32_t index) {
    ViewerStream* stream = newStream(parent->file + " #" + std::to_string(index));
    std::string error = "the stream can't be read";
    tnefclient::Opened result = tnefclient::Opened::kUnreadable;
    if (parent->usable) result = stream->session->openEmbedded(*parent->session, index, &error);
    return opened(stream, result, error);
}

EMSCRIPTEN_KEEPALIVE void tnefViewerClose(ViewerStream* stream) {
    if (stream == nullptr) return;
    // The session closes its container before the host it uses goes.
    stream->session.reset();
    delete stream;
}

// {"file", "status", "error", "summary", "subfiles"}, as list --json, every
// subfile with "embedded": true when it holds a message; only the head when
// the stream can't be read at all.
EMSCRIPTEN_KEEPALIVE const char* tnefViewerListing(ViewerStream* stream) {
    ordered_json report = {{"file", stream->file},
                           {"status", stream->status ? ordered_json(*stream->status) : nullptr},
                           {"error", orNull(stream->error)}};
    if (!stream->usable) return answer(stream, report);
    tnefclient::Session& session = *stream->session;
    tnefclient::Listing listing = tnefclient::readListing(session);
    report["summary"] = tnefclient::summaryJson(listing.summary);
    ordered_json subfiles = tnefclient::subfilesJson(listing);
    for (ordered_json& subfile : subfiles) {
        if (session.holdsEmbeddedMessage(subfile["index"].get<int32_t>())) subfile["embedded"] = true;
    }
    report["subfiles"] = subfiles;
    return answer(stream, report);
}

// {"index", "queryStatus", "properties": [{"tag", "type", "value"}]}: the
// properties of subfile `index` among `tags` that it has. A long value is
// cut, and its "size" says how long it was.
EMSCRIPTEN_KEEPALIVE const char* tnefViewerProperties(ViewerStream* stream, int32_t index,
                                                      const uint32_t* tags, int32_t count) {
    ordered_json report = {{"index", index}, {"queryStatus", nullptr}};
    ordered_json properties = ordered_json::array();
    if (stream->usable && count >= 0) {
        tnefclient::Session& session = *stream->session;
        int32_t status = 0;
        std::vector<tnefclient::Element> elements =
            session.properties(index, std::vector<uint32_t>(tags, tags + count), &status);
        report["queryStatus"] = status;
        for (tnefclient::Element& element : elements) {
            ordered_json property = {{"tag", tnefclient::tagText(element.tag)},
                                     {"type", tnefclient::elementTypeName(element)}};
            size_t shown = element.type == kElementBinary ? kShownBinary : kShownText;
            if (element.bytes.size() > shown) {
                property["size"] = element.bytes.size();
                element.bytes.resize(shown);
            }
            property["value"] = tnefclient::elementJson(session.host(), element, session.messageCharset());
            properties.push_back(std::move(property));
        }
    }
    report["properties"] = properties;
    return answer(stream, report);
}

// Extracts subfile `index` into memory: {"status", "resultFlags",
// "payloadName", "linkedPath", "form" (of a message: "text", "html" or
// "rtf"), "size"}. `body` is 0 for the module's own order (text first), 1
// for a stored HTML or RTF body first. The bytes stay until the next
// extraction or tnefViewerReleaseExtracted.
EMSCRIPTEN_KEEPALIVE const char* tnefViewerExtract(ViewerStream* stream, int32_t index,
                                                   int32_t body, int32_t charset) {
    stream->output.clear();
    ordered_json report = {{"status", nullptr}};
    if (stream->usable) {
        tnefclient::Session& session = *stream->session;
        tnefclient::ExtractSettings settings;
        settings.body = body != 0 ? tnefclient::BodyChoice::kHtml : tnefclient::BodyChoice::kAuto;
        settings.noHeader = true;
        settings.charset = charset;
        tnefclient::ExtractOutcome outcome = session.extractToMemory(index, &stream->output, settings);
        // Names from the stream, read in the message's charset.
        auto name = [&session](const std::optional<std::string>& text) {
            return text ? ordered_json(tnefclient::eightBitToUtf8(session.host(), *text,
                                                                  session.messageCharset()))
                        : ordered_json(nullptr);
        };
        report["status"] = outcome.status;
        report["resultFlags"] = outcome.resultFlags;
        report["payloadName"] = name(outcome.payloadName);
        report["linkedPath"] = name(outcome.linkedPath);
        if (session.subfile(index).type == kSubfileMessage) {
            std::string_view head(reinterpret_cast<const char*>(stream->output.data()),
                                  std::min<size_t>(stream->output.size(), 64));
            report["form"] = tnefclient::bodyFormName(tnefclient::detectBodyForm(head));
        }
    }
    report["size"] = stream->output.size();
    return answer(stream, report);
}

// Makes the RTF of the last extraction readable, in place: HTML (`html`
// nonzero; the HTML it encapsulates, or HTML made from it) or text, as
// UTF-8. {"status", "encapsulation", "size"}.
EMSCRIPTEN_KEEPALIVE const char* tnefViewerReadableRtf(ViewerStream* stream, int32_t html) {
    std::string rtf(stream->output.begin(), stream->output.end());
    stream->output.clear();
    BytesSink sink(stream->output);
    tnefrtf::HostCodePageDecoder codePages(stream->host->context());
    tnefrtf::ConversionResult result = tnefrtf::convertRtf(
        rtf, html != 0 ? tnefrtf::OutputForm::kHtml : tnefrtf::OutputForm::kText, sink, &codePages);
    static const char* const kEncapsulations[] = {"unknown", "none", "html", "text"};
    ordered_json report = {{"status", tnefrtf::conversionStatusText(result.status)},
                           {"encapsulation", kEncapsulations[static_cast<int>(result.encapsulation)]},
                           {"size", stream->output.size()}};
    return answer(stream, report);
}

EMSCRIPTEN_KEEPALIVE const uint8_t* tnefViewerExtractedBytes(ViewerStream* stream) {
    return stream->output.data();
}

EMSCRIPTEN_KEEPALIVE void tnefViewerReleaseExtracted(ViewerStream* stream) {
    std::vector<uint8_t>().swap(stream->output);
}

// Converts text from charset `from` to charset `to` with the host's
// conversion service; what can't be converted becomes '?'. Returns the
// length of the result (read with tnefViewerConverted), or -1 when the host
// has no conversion between the two.
EMSCRIPTEN_KEEPALIVE int32_t tnefViewerConvert(CharsetId from, CharsetId to, const uint8_t* bytes,
                                               int32_t length) {
    static const std::unique_ptr<tnefhost::PosixHost> host = makeHost();
    HostContext* context = host->context();
    context->currentCharset = to;
    HostText source{bytes, length};
    HostTextBuffer measure{nullptr, 0};
    if (context->hostCharsetToCharset(context, from, &source, &measure, '?') == 0) return -1;
    converted.assign(static_cast<size_t>(measure.length), 0);
    HostTextBuffer target{converted.data(), measure.length};
    if (context->hostCharsetToCharset(context, from, &source, &target, '?') == 0) return -1;
    return target.length;
}

EMSCRIPTEN_KEEPALIVE const uint8_t* tnefViewerConverted() { return converted.data(); }

}  // extern "C"
