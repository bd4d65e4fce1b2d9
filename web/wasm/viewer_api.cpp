// The entry points the page calls (through cwrap). A stream is opened from a
// file of the page's memory file system, by the tool's own session code with
// a host whose OLE library is linked in; listings and properties come back
// as JSON in the tool's form (list --json), extracted subfiles as bytes, RTF
// bodies made readable by rtf/.
#include <emscripten.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "cli/body_form.h"
#include "cli/element_values.h"
#include "cli/json_output.h"
#include "cli/listing.h"
#include "cli/open_input.h"
#include "cli/text_utf8.h"
#include "host/io_objects.h"
#include "host/posix_host.h"
#include "oleio/ole_interface.h"
#include "rtf/converter.h"
#include "rtf/host_code_pages.h"

namespace {

using nlohmann::ordered_json;

// One open stream, with the last answer handed to the page.
struct ViewerStream {
    std::string file;
    tnefcli::OpenedInput input;
    std::string text;  // the last JSON answer
    std::unique_ptr<tnefhost::MemoryIo> output;
    std::string embeddedFile;  // of an embedded message: its stream, removed on close
};

constexpr uint32_t kTagAttachMethod = 0x37050003;
constexpr int64_t kAttachEmbeddedMessage = 5;
int embeddedFiles = 0;

const tnefcli::ReaderModule& linkedModule() {
    static const tnefcli::ReaderModule module = [] {
        tnefcli::ReaderModule linked;
        tnefGetContainerReaderInterfaceEx(&linked.table);
        return linked;
    }();
    return module;
}

std::unique_ptr<tnefhost::PosixHost> makeHost() {
    tnefhost::HostOptions options;
    options.linkedLibraries = {
        {"zdolefio.dll", {{"GetOLEInterface", reinterpret_cast<void*>(&GetOLEInterface)}}}};
    return std::make_unique<tnefhost::PosixHost>(options);
}

const char* answer(ViewerStream* stream, const ordered_json& document) {
    stream->text = document.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
    return stream->text.c_str();
}

ordered_json reportHead(const ViewerStream* stream) {
    return tnefcli::fileReportHead(stream->file, stream->input.status, stream->input.error);
}

// The bytes of a property value the page is shown at most.
constexpr size_t kShownBinary = 256;
constexpr size_t kShownText = 16384;

// The last result of tnefViewerConvert.
std::vector<uint8_t> converted;

ViewerStream* openStream(std::string path, std::string file) {
    auto* stream = new ViewerStream;
    stream->file = std::move(file);
    auto host = makeHost();
    stream->input = tnefcli::openInputWith(linkedModule(), *host, path, false);
    stream->input.host = std::move(host);
    return stream;
}

// An attachment that holds a message (attach method 5): extracted, it is
// that message's own TNEF stream.
bool holdsEmbeddedMessage(tnefcli::Session& session, int32_t index) {
    if (session.subfile(index).type != kSubfileAttachment) return false;
    int32_t status = 0;
    std::vector<tnefcli::Element> method = session.properties(index, {kTagAttachMethod}, &status);
    return method.size() == 1 && method[0].hasValue && method[0].type == kElementInteger &&
           method[0].number == kAttachEmbeddedMessage;
}

// Output of the RTF converters.
class BytesSink final : public tnefrtf::OutputSink {
public:
    bool write(std::string_view text) override {
        bytes.insert(bytes.end(), text.begin(), text.end());
        return true;
    }
    std::vector<uint8_t> bytes;
};

}  // namespace

extern "C" {

// Opens the file at `path`; never null. Whether it could be read shows in
// its listing.
EMSCRIPTEN_KEEPALIVE ViewerStream* tnefViewerOpen(const char* path) {
    return openStream(path, path);
}

// Opens the embedded message at `index` of `parent` as a stream of its own,
// extracted into a file of the memory file system.
EMSCRIPTEN_KEEPALIVE ViewerStream* tnefViewerOpenEmbedded(ViewerStream* parent, int32_t index) {
    std::string path = "/embedded-" + std::to_string(++embeddedFiles);
    if (parent->input.usable()) {
        tnefhost::FileIo output(path, tnefhost::FileIo::Mode::kWrite);
        parent->input.session->extract(index, output.io(), 0, 0);
    }
    ViewerStream* stream = openStream(path, parent->file + " #" + std::to_string(index));
    stream->embeddedFile = path;
    return stream;
}

EMSCRIPTEN_KEEPALIVE void tnefViewerClose(ViewerStream* stream) {
    if (stream == nullptr) return;
    // The session closes its container before the host it uses goes.
    stream->input.session.reset();
    if (!stream->embeddedFile.empty()) std::remove(stream->embeddedFile.c_str());
    delete stream;
}

// {"file", "status", "error", "summary", "subfiles"}, as list --json, every
// subfile with "embedded": true when it holds a message; only the head when
// the stream can't be read at all.
EMSCRIPTEN_KEEPALIVE const char* tnefViewerListing(ViewerStream* stream) {
    ordered_json report = reportHead(stream);
    if (!stream->input.usable()) return answer(stream, report);
    tnefcli::Listing listing = tnefcli::readListing(*stream->input.session);
    report["summary"] = tnefcli::summaryJson(listing.summary);
    ordered_json subfiles = ordered_json::array();
    for (const tnefcli::ListedSubfile& s : listing.subfiles) {
        ordered_json subfile = tnefcli::subfileJson(s);
        if (holdsEmbeddedMessage(*stream->input.session, s.entry.index)) subfile["embedded"] = true;
        subfiles.push_back(std::move(subfile));
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
    if (stream->input.usable() && count >= 0) {
        tnefcli::Session& session = *stream->input.session;
        int32_t status = 0;
        std::vector<tnefcli::Element> elements =
            session.properties(index, std::vector<uint32_t>(tags, tags + count), &status);
        report["queryStatus"] = status;
        for (tnefcli::Element& element : elements) {
            ordered_json property = {{"tag", tnefcli::tagText(element.tag)},
                                     {"type", tnefcli::elementTypeName(element)}};
            // Long values (an attachment's data, a body) are shown cut.
            size_t shown = element.type == kElementBinary ? kShownBinary : kShownText;
            if (element.bytes.size() > shown) {
                property["size"] = element.bytes.size();
                element.bytes.resize(shown);
            }
            property["value"] = tnefcli::elementJson(session.host(), element, session.messageCharset());
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
    uint32_t flags = kTnefExtractOmitHeader | (body != 0 ? kTnefExtractPreferStoredBody : 0u);
    stream->output = std::make_unique<tnefhost::MemoryIo>();
    ordered_json report = {{"status", nullptr}};
    if (stream->input.usable()) {
        tnefcli::ExtractOutcome outcome =
            stream->input.session->extract(index, stream->output->io(), flags, charset);
        tnefcli::Session& session = *stream->input.session;
        // Names from the stream, read in the message's charset.
        auto orNull = [&session](const std::optional<std::string>& text) {
            return text ? ordered_json(tnefcli::eightBitToUtf8(session.host(), *text,
                                                              session.messageCharset()))
                        : ordered_json(nullptr);
        };
        report["status"] = outcome.status;
        report["resultFlags"] = outcome.resultFlags;
        report["payloadName"] = orNull(outcome.payloadName);
        report["linkedPath"] = orNull(outcome.linkedPath);
        if (session.subfile(index).type == kSubfileMessage) {
            const std::vector<uint8_t>& bytes = stream->output->bytes();
            std::string_view head(reinterpret_cast<const char*>(bytes.data()),
                                  std::min<size_t>(bytes.size(), 64));
            report["form"] = tnefcli::bodyFormName(tnefcli::detectBodyForm(head));
        }
    }
    report["size"] = stream->output->bytes().size();
    return answer(stream, report);
}

// Makes the RTF of the last extraction readable, in place: HTML (`html`
// nonzero; the HTML it encapsulates, or HTML made from it) or text, as
// UTF-8. {"status", "encapsulation", "size"}.
EMSCRIPTEN_KEEPALIVE const char* tnefViewerReadableRtf(ViewerStream* stream, int32_t html) {
    const std::vector<uint8_t>& bytes = stream->output->bytes();
    std::string_view rtf(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    BytesSink sink;
    tnefrtf::HostCodePageDecoder codePages(stream->input.host->context());
    tnefrtf::ConversionResult result = tnefrtf::convertRtf(
        rtf, html != 0 ? tnefrtf::OutputForm::kHtml : tnefrtf::OutputForm::kText, sink, &codePages);
    stream->output = std::make_unique<tnefhost::MemoryIo>(std::move(sink.bytes));
    static const char* const kEncapsulations[] = {"unknown", "none", "html", "text"};
    ordered_json report = {{"status", tnefrtf::conversionStatusText(result.status)},
                           {"encapsulation", kEncapsulations[static_cast<int>(result.encapsulation)]},
                           {"size", stream->output->bytes().size()}};
    return answer(stream, report);
}

EMSCRIPTEN_KEEPALIVE const uint8_t* tnefViewerExtractedBytes(ViewerStream* stream) {
    return stream->output ? stream->output->bytes().data() : nullptr;
}

EMSCRIPTEN_KEEPALIVE void tnefViewerReleaseExtracted(ViewerStream* stream) {
    stream->output.reset();
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
