// Pieces shared by the plain-text rendering: literals written in either
// text form, trimming of trailing zeros, the summary slots as the renderers
// see them, the charset-to-charset recoding and the form test of the lines
// that are assembled as 8-bit text.
#pragma once

#include "reader/host.h"

// Literals of the header. The 16-bit forms are the same letters widened to
// two bytes each, low byte first.
constexpr const char* kTnefLineEnd = "\r\n";
constexpr const char* kTnefNameSeparator = "; ";
constexpr const char* kTnefAttachmentsLabel = "Attachments: ";

// Writes `count` bytes to the output; nothing when `count` is below 1. The
// write's result is not examined: a lost piece is no failure.
void tnefWriteBytes(IoObject* output, const void* bytes, int32_t count);

// Writes an ASCII literal as it is (`wide` false) or as 16-bit text.
void tnefWriteLiteral(IoObject* output, const char* text, bool wide);

// A labelled line: label, `count` bytes of text, line end, all in one form.
void tnefWriteLabelledLine(IoObject* output, const char* label, const void* text, int32_t count,
                           bool wide);

// Byte count of a 16-bit text without its trailing 00 00 units.
int32_t tnefTrimWideZeros(const uint8_t* text, int32_t size);
// Byte count of an 8-bit text without its trailing 00 bytes.
int32_t tnefTrimNarrowZeros(const uint8_t* text, int32_t size);

// The bytes a text element points to.
inline uint8_t* tnefElementBytes(const MetaElement* element) {
    return reinterpret_cast<uint8_t*>(static_cast<uintptr_t>(element->value));
}

// Summary slot `index` when it exists and has a value, else null.
MetaElement* tnefSummarySlot(TnefContainer* container, int32_t index);

// The charset of the message's strings, 0 when there is no message.
inline CharsetId tnefMessageCharset(const TnefObject* message) {
    return message != nullptr ? message->charset : kCharsetNone;
}

// 8-bit text in `from` recoded into `to` by the host's charset-to-charset
// service, in a fresh buffer from the allocator inside the host that the
// caller gives back. Null when nothing came out. charsetConverted is set
// as soon as the buffer has been allocated, whether or not text came.
uint8_t* tnefRecodeText(TnefContainer* container, const uint8_t* text, int32_t count,
                        CharsetId from, CharsetId to, int32_t* outCount);

// Whether the summary is in 16-bit form at this point: the host wants
// 16-bit text, or it wants nothing, a 16-bit field has been met and the
// message names no 8-bit charset.
bool tnefSummaryIsWide(const TnefContainer* container, CharsetId wanted, CharsetId message);

// Writes a line assembled as 8-bit text: unchanged, or, when `wide`, read
// as code page 1252 and written as 16-bit text (which counts as a
// conversion).
void tnefWriteAssembledLine(TnefContainer* container, IoObject* output, const char* text,
                            int32_t count, bool wide);

// The Attachments line: "Attachments: " and the name of each attachment,
// joined by "; ", each name and its label or separator in the form its
// source and the charsets give. Returns true when the line began with the
// 16-bit label, which makes the closing pair 16-bit too.
bool tnefWriteAttachmentNames(TnefContainer* container, TnefObject* message, CharsetId wanted,
                              IoObject* output);
