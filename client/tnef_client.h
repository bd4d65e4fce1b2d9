// tnef_client.h: the C++ client of the TNEF reader module, which every front
// end (the tnef-reader tool, mail, the browser viewer) stands on.
//
// The module speaks only the C contract of reader/host.h. This library does
// what every host of it must do: it loads the module, opens a stream from a
// file, a memory buffer, standard input or any IoObject, lists the subfiles,
// reads the summary and MAPI properties, extracts subfiles into a file, a
// memory buffer or any IoObject (which is also how the message is rendered),
// and opens embedded messages as streams of their own. Everything the module
// hands back is copied out of the module's memory and released at once; text
// comes out as UTF-8 where these functions say so.
//
// A whole session:
//
//     std::string error;
//     const tnefclient::ReaderModule* module = tnefclient::ReaderModule::load(&error);
//     if (module == nullptr) fail(error);  // says where it looked
//     auto host = tnefclient::makeHost(*module, "winmail.dat");
//     tnefclient::Session session(*module, host->context());
//     if (session.open("winmail.dat", {}, &error) != tnefclient::Opened::kOk) fail(error);
//     // session.openStatus() != 0: damaged, but what was read can be had.
//     tnefclient::Listing listing = tnefclient::readListing(session, /*nested=*/true);
//     std::vector<uint8_t> body;
//     session.extractToMemory(session.messageIndex(), &body, {tnefclient::BodyChoice::kHtml});
//     for (const tnefclient::ListedSubfile& s : listing.subfiles) {
//         if (s.nested) { /* an embedded message: s.nested->listing, to any depth */ }
//     }
//
// Readable bodies: the module hands a body out as the message stores it,
// most often compressed RTF. client/readable_body.h gives it as text or
// HTML in UTF-8 whatever the message stores, with the summary header in the
// same form:
//
//     tnefclient::ReadableRequest request;  // form kAuto, kText or kHtml
//     request.htmlToText = tnefclient::libxmlHtmlToText;  // client/html_text/html_text.h
//     tnefclient::StdoutSink out;
//     tnefclient::writeReadableBody(session, session.messageIndex(), request, out);
//
// A session belongs to one thread; give each thread its own host context.
// Lower-level pieces live beside this header: client/buffered_io.h (the
// read-ahead and write-behind IoObjects) and client/output_sinks.h (an
// output IoObject over any sink, standard output, and the sinks readable
// bodies flow through).
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/io_objects.h"
#include "host/posix_host.h"
#include "reader/host.h"

namespace tnefclient {

// ---------------------------------------------------------------------------
// The module
// ---------------------------------------------------------------------------

struct ReaderModule {
    ReaderInterface table{};  // the six operations
    std::string path;         // the shared object that was loaded; empty when linked in
    std::string folder;       // where the OLE library libzdolefio.so is looked for

    // Loads libtnefreader.so with dlopen, once per process; later calls
    // return the same module. Looks in the folder above the executable's
    // folder (the build layout), beside the executable, in ../lib/tnef-reader
    // from it (the installed layout), at $TNEF_MODULE (a file, or a folder
    // holding it), then on the dynamic loader's path. On failure returns null
    // and describes what was tried in `error`.
    static const ReaderModule* load(std::string* error);

    // A module linked into the program: pass tnefGetContainerReaderInterfaceEx.
    // `folder` is where the OLE library is looked for (empty: the loader's path).
    static ReaderModule linked(TnefGetInterfaceFn entry, std::string folder = {});
};

// A host context for `module`: the POSIX host of host/, looking for the OLE
// library in module.folder, writing the module's error lines to stderr
// after "`logPrefix`: ".
std::unique_ptr<tnefhost::PosixHost> makeHost(const ReaderModule& module,
                                              const std::string& logPrefix);

// ---------------------------------------------------------------------------
// What the module describes, copied out of its memory
// ---------------------------------------------------------------------------

// A subfile as tnefGetSubfileInfo describes it. Types are kSubfileMessage,
// kSubfileAttachment, kSubfileOle and kSubfileRoot of reader/host.h.
struct SubfileEntry {
    int32_t index = 0;
    int32_t status = 0;               // of tnefGetSubfileInfo; the rest is empty unless 0
    std::optional<std::string> name;  // the module's bytes, as they came
    int32_t type = 0;
    int32_t size = 0;
    uint8_t time[8] = {};             // FILETIME, little-endian; all zero: none
    CharsetId charset = 0;
    bool hasCharset = false;          // only the first object reports one
    int32_t parentIndex = -1;
    std::vector<int32_t> children;
};

// A metadata element: a summary field or the answer to one property tag.
// Types are the kElement... values of reader/host.h.
struct Element {
    bool hasValue = false;
    uint32_t tag = 0;
    int32_t type = 0;
    std::optional<std::string> name;  // summary fields only: "From", "Sent", ...
    int64_t number = 0;               // kElementBoolean and kElementInteger
    std::vector<uint8_t> bytes;       // every other type: the value's bytes
};

// True when the element carries a value that can be shown.
bool elementHasValue(const Element& element);
// A text element as UTF-8 (see eightBitToUtf8 and utf16leToUtf8), without its
// terminating zeros; a time element in ISO 8601 UTC. Null for other types and
// for an element without a value.
std::optional<std::string> elementString(HostContext* host, const Element& element,
                                         CharsetId charset);

// ---------------------------------------------------------------------------
// Extraction and rendering
// ---------------------------------------------------------------------------

// The form asked for the message. kAuto and kText take the module's order
// (the text body, then a stored HTML or RTF body); kHtml and kRtf put a
// stored HTML or RTF body first. kNone is for front ends that skip the
// message; extraction treats it like kAuto.
enum class BodyChoice { kAuto, kText, kHtml, kRtf, kNone };

struct ExtractSettings {
    BodyChoice body = BodyChoice::kAuto;  // the message's form
    bool noHeader = false;                // leave out the summary header
    CharsetId charset = kCharsetNone;     // the message's text in this charset; 0: as stored
};

struct ExtractOutcome {
    // The module's status; kTnefOutputUnusable also when the file or memory
    // output of extractToFile or extractToMemory could not be written.
    int32_t status = 0;
    uint32_t resultFlags = 0;                // kTnefResult... bits
    std::optional<std::string> linkedPath;   // an OLE link: the file it points to
    std::optional<std::string> payloadName;  // an OLE object: the name its descriptor gives

    bool isLink() const { return (resultFlags & kTnefResultOleLink) != 0; }
};

// The form of a rendered message, told from its first bytes: "{\rtf" is RTF,
// a document that opens with a tag is HTML, anything else is text.
enum class BodyForm { kText, kHtml, kRtf };
BodyForm detectBodyForm(std::string_view head);
const char* bodyFormName(BodyForm form);       // "text", "html", "rtf"
const char* bodyFormExtension(BodyForm form);  // ".txt", ".html", ".rtf"

// ---------------------------------------------------------------------------
// A session: one open stream
// ---------------------------------------------------------------------------

enum class Opened {
    kOk,          // the stream is open; openStatus() says whether it is damaged
    kUnreadable,  // the input can't be read (or the module refused to start)
    kNotTnef,     // the module found nothing it could read
};

struct OpenOptions {
    bool rootEntry = false;  // show the synthetic "root/" entry as subfile 0
};

// How deep embedded messages are opened; deeper ones count as damaged.
constexpr int kMaxNestingDepth = 16;

// True when `head` starts with the TNEF signature (0x223E9F78, little-endian).
bool startsWithTnefSignature(std::string_view head);

class Session {
public:
    // `module` and `host` must outlive the session.
    Session(const ReaderModule& module, HostContext* host);
    ~Session();  // closes the container
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Opening: call one of these once. On anything but kOk, `error` tells
    // why in words. Files and standard input are read ahead in large blocks.
    Opened open(const std::string& file, const OpenOptions& options, std::string* error);  // "-": stdin
    Opened openFile(const std::string& path, const OpenOptions& options, std::string* error);
    // Spooled to a scratch file first, since the module seeks in its input.
    Opened openStandardInput(const OpenOptions& options, std::string* error);
    Opened openBytes(std::vector<uint8_t> bytes, const OpenOptions& options, std::string* error);
    // Any input; the session owns it.
    Opened openIo(std::unique_ptr<tnefhost::HostIo> input, const OpenOptions& options,
                  std::string* error);
    // The embedded message at `index` of `parent` (see holdsEmbeddedMessage),
    // as a stream of its own, one level deeper, with the parent's options.
    // Gives kUnreadable past kMaxNestingDepth or when the subfile can't be
    // extracted, kNotTnef when it holds no TNEF stream.
    Opened openEmbedded(Session& parent, int32_t index, std::string* error);

    const ReaderModule& module() const { return module_; }
    HostContext* host() const { return host_; }
    int depth() const { return depth_; }  // 0, or 1 + the parent's for an embedded message
    // The module's open status: 0, or why the stream is only partly read.
    int32_t openStatus() const { return openStatus_; }
    int32_t subfileCount() const { return subfileCount_; }

    SubfileEntry subfile(int32_t index);
    // The index of the first message subfile, or -1.
    int32_t messageIndex();
    // The charset of the message's 8-bit text; 0 when none is known.
    CharsetId messageCharset();
    // True when the subfile is an attachment that holds a message (attach
    // method 5): extracted, it is that message's own TNEF stream.
    bool holdsEmbeddedMessage(int32_t index);

    // The seven summary elements (From, Sent, To, Cc, Bcc, Subject,
    // Priority) of the message at `index`; `status` of the query.
    std::vector<Element> summary(int32_t index, int32_t* status);
    // The properties found for `tags` on `index`, packed: each element
    // carries the tag it answers; absent tags have none.
    std::vector<Element> properties(int32_t index, const std::vector<uint32_t>& tags,
                                    int32_t* status);

    // Extracts subfile `index`: the message rendered as `settings` ask, an
    // OLE object unpacked, any other attachment as stored.
    ExtractOutcome extract(int32_t index, IoObject* output, const ExtractSettings& settings = {});
    // `bytes` receives the subfile; it is left empty unless the status is 0.
    ExtractOutcome extractToMemory(int32_t index, std::vector<uint8_t>* bytes,
                                   const ExtractSettings& settings = {});
    // Creates or replaces the file at `path`, written in large blocks. After
    // a failure the file may hold part of the subfile.
    ExtractOutcome extractToFile(int32_t index, const std::string& path,
                                 const ExtractSettings& settings = {});

private:
    Opened start(std::unique_ptr<tnefhost::HostIo> source, bool readAhead,
                 const OpenOptions& options, const std::string& label, std::string* error);
    ResultMemory* results() { return &resultMemory_; }
    void release(void* block);
    std::vector<Element> takeElements(MetadataResult& result);
    std::optional<std::string> takeText(char* text);

    const ReaderModule& module_;
    HostContext* host_;
    tnefhost::HostMemory resultHeap_;
    ResultMemory resultMemory_{};
    std::unique_ptr<tnefhost::HostIo> source_;  // the file, buffer or spooled input
    std::unique_ptr<tnefhost::HostIo> input_;   // what the module reads: source_, maybe read ahead
    TnefContainer* container_ = nullptr;
    int32_t openStatus_ = 0;
    int32_t subfileCount_ = 0;
    bool rootEntry_ = false;
    int depth_ = 0;
    std::optional<CharsetId> messageCharset_;
};

// ---------------------------------------------------------------------------
// Listing: what a stream holds, as text
// ---------------------------------------------------------------------------

// The summary of a message as UTF-8; null where the message has none.
struct SummaryText {
    int32_t status = 0;  // of the metadata query; 0 when there is no message
    std::optional<std::string> from, sent, to, cc, bcc, subject;
    std::optional<std::string> importance;  // "Low", "Normal", "High"
};

struct NestedListing;

struct ListedSubfile {
    SubfileEntry entry;
    std::optional<std::string> name;  // UTF-8; null when the module gave none
    std::optional<std::string> time;  // ISO 8601 UTC; null when there is none
    // An embedded message, listed in turn (readListing with `nested`).
    std::shared_ptr<NestedListing> nested;
};

struct Listing {
    std::vector<ListedSubfile> subfiles;
    SummaryText summary;
    // Every subfile could be described; with `nested`, also every embedded
    // message opened, undamaged, and complete in turn.
    bool complete = true;
};

struct NestedListing {
    Opened opened = Opened::kOk;
    std::optional<int32_t> status;     // the module's open status; null when it was never asked
    std::optional<std::string> error;  // why it is damaged or could not be opened
    Listing listing;                   // empty unless opened is kOk
};

// Reads every subfile and the message's summary. With `nested`, every
// embedded message is opened and listed too, to kMaxNestingDepth.
Listing readListing(Session& session, bool nested = false);

// "message", "attachment", "ole", "root" (or "unknown").
const char* subfileTypeName(int32_t type);
// "Low", "Normal", "High" for an importance number.
const char* importanceWord(int64_t value);
// The module's status in words: "stream failure: unreadable or malformed data (4)".
std::string statusText(int32_t status);

// ---------------------------------------------------------------------------
// Text and times
// ---------------------------------------------------------------------------

bool isValidUtf8(std::string_view text);
// The length of the valid UTF-8 character `text` starts with, 1 to 4; 0 when
// it starts with none, `cut` set when the text ends inside one that may
// still be valid.
size_t utf8CharLength(std::string_view text, bool* cut = nullptr);
// UTF-16LE to UTF-8; an unpaired surrogate becomes U+FFFD, a last odd byte
// is dropped.
std::string utf16leToUtf8(const uint8_t* bytes, size_t length);
// 8-bit text to UTF-8: text that already is valid UTF-8 stays as it is,
// anything else is read in `charset` (windows-1252 where none is known)
// through the host's conversion service.
std::string eightBitToUtf8(HostContext* host, std::string_view text, CharsetId charset);
// Text without the zero bytes (8-bit) or zero units (16-bit) at its end.
std::string_view withoutTrailingNuls(std::string_view text, bool sixteenBit);

// FILETIME (100-ns ticks since 1601-01-01 UTC, little-endian) as ISO 8601:
// "2009-05-04T10:20:30Z"; null for the all-zero time, which means none.
std::optional<std::string> fileTimeToIso(const uint8_t bytes[8]);
// The same time as the module's summary headers write it, in the local time
// of the process: "Mon May 04 10:20:30 2009".
std::optional<std::string> fileTimeToDateText(const uint8_t bytes[8]);

}  // namespace tnefclient
