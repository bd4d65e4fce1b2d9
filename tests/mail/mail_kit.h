// Mail for the tests, built with GMime around streams from the test kit, and
// read back with GMime.
#pragma once

#include <gmime/gmime.h>

#include <map>
#include <string>
#include <vector>

#include "mail/gobject_ref.h"
#include "tests/support/tnef_writer.h"

namespace tneftest {

using tnefmail::GRef;

// A part of `type` holding `bytes` in `encoding`, with a file name when set.
GRef<GMimeObject> bytesPart(const std::string& type, const Bytes& bytes,
                            GMimeContentEncoding encoding, const char* name = nullptr);
GRef<GMimeObject> multipart(const char* subtype, const std::vector<GRef<GMimeObject>>& parts);
// A TNEF attachment named winmail.dat in base64, and a plain text part.
GRef<GMimeObject> tnefPart(const Bytes& tnef);
GRef<GMimeObject> textPart(const std::string& text);
// message/rfc822 around a message with `body`.
GRef<GMimeObject> messagePart(GRef<GMimeObject> body);
// A whole message with From, Subject, Message-ID and X-MS-TNEF-Correlator
// around `body`, as bytes.
std::string messageBytes(GRef<GMimeObject> body, const std::string& id = "m1@example.com");

// `message` as an entry of an mbox, from `sender`.
std::string mboxEntry(const std::string& sender, const std::string& message);
// The cur, new and tmp folders of a maildir at `path`.
void makeMaildir(const std::string& path);

// What a reader finds in a message: parts with a file name, by name, with
// their decoded bytes, and whether images the HTML shows are related to it.
// GMime is started for the whole test program.
struct ReadBack {
    std::map<std::string, std::string> attachments;
    bool related = false;  // a multipart/related holds the HTML and its images
};
ReadBack readBack(const std::string& messageBytes);

}  // namespace tneftest
