// The MAPI properties the page asks a subfile for: the module answers
// queries by tag, so the page asks for the well-known ones (text in both
// its 8-bit and 16-bit forms), and for any tag the user types.

// [property id, name, types]; the types are the low words of the tags.
const TEXT = [0x001e, 0x001f];
const LONG = [0x0003];
const BOOL = [0x000b];
const TIME = [0x0040];
const BINARY = [0x0102];

const KNOWN = [
  [0x0002, 'PR_ALTERNATE_RECIPIENT_ALLOWED', BOOL],
  [0x0017, 'PR_IMPORTANCE', LONG],
  [0x001a, 'PR_MESSAGE_CLASS', TEXT],
  [0x0023, 'PR_ORIGINATOR_DELIVERY_REPORT_REQUESTED', BOOL],
  [0x0026, 'PR_PRIORITY', LONG],
  [0x0029, 'PR_READ_RECEIPT_REQUESTED', BOOL],
  [0x0036, 'PR_SENSITIVITY', LONG],
  [0x0037, 'PR_SUBJECT', TEXT],
  [0x0039, 'PR_CLIENT_SUBMIT_TIME', TIME],
  [0x003d, 'PR_SUBJECT_PREFIX', TEXT],
  [0x0042, 'PR_SENT_REPRESENTING_NAME', TEXT],
  [0x0064, 'PR_SENT_REPRESENTING_ADDRTYPE', TEXT],
  [0x0065, 'PR_SENT_REPRESENTING_EMAIL_ADDRESS', TEXT],
  [0x0070, 'PR_CONVERSATION_TOPIC', TEXT],
  [0x0071, 'PR_CONVERSATION_INDEX', BINARY],
  [0x007d, 'PR_TRANSPORT_MESSAGE_HEADERS', TEXT],
  [0x0c1a, 'PR_SENDER_NAME', TEXT],
  [0x0c1e, 'PR_SENDER_ADDRTYPE', TEXT],
  [0x0c1f, 'PR_SENDER_EMAIL_ADDRESS', TEXT],
  [0x0e02, 'PR_DISPLAY_BCC', TEXT],
  [0x0e03, 'PR_DISPLAY_CC', TEXT],
  [0x0e04, 'PR_DISPLAY_TO', TEXT],
  [0x0e06, 'PR_MESSAGE_DELIVERY_TIME', TIME],
  [0x0e07, 'PR_MESSAGE_FLAGS', LONG],
  [0x0e08, 'PR_MESSAGE_SIZE', LONG],
  [0x0e1b, 'PR_HASATTACH', BOOL],
  [0x0e1d, 'PR_NORMALIZED_SUBJECT', TEXT],
  [0x0e1f, 'PR_RTF_IN_SYNC', BOOL],
  [0x0e20, 'PR_ATTACH_SIZE', LONG],
  [0x0e21, 'PR_ATTACH_NUM', LONG],
  [0x0ffe, 'PR_OBJECT_TYPE', LONG],
  [0x1000, 'PR_BODY', TEXT],
  [0x1009, 'PR_RTF_COMPRESSED', BINARY],
  [0x1013, 'PR_HTML', [...BINARY, ...TEXT]],
  [0x1035, 'PR_INTERNET_MESSAGE_ID', TEXT],
  [0x1039, 'PR_INTERNET_REFERENCES', TEXT],
  [0x1042, 'PR_IN_REPLY_TO_ID', TEXT],
  [0x3001, 'PR_DISPLAY_NAME', TEXT],
  [0x3007, 'PR_CREATION_TIME', TIME],
  [0x3008, 'PR_LAST_MODIFICATION_TIME', TIME],
  [0x300b, 'PR_SEARCH_KEY', BINARY],
  [0x3701, 'PR_ATTACH_DATA_BIN', BINARY],
  [0x3702, 'PR_ATTACH_ENCODING', BINARY],
  [0x3703, 'PR_ATTACH_EXTENSION', TEXT],
  [0x3704, 'PR_ATTACH_FILENAME', TEXT],
  [0x3705, 'PR_ATTACH_METHOD', LONG],
  [0x3707, 'PR_ATTACH_LONG_FILENAME', TEXT],
  [0x3708, 'PR_ATTACH_PATHNAME', TEXT],
  [0x3709, 'PR_ATTACH_RENDERING', BINARY],
  [0x370a, 'PR_ATTACH_TAG', BINARY],
  [0x370b, 'PR_RENDERING_POSITION', LONG],
  [0x370d, 'PR_ATTACH_LONG_PATHNAME', TEXT],
  [0x370e, 'PR_ATTACH_MIME_TAG', TEXT],
  [0x3712, 'PR_ATTACH_CONTENT_ID', TEXT],
  [0x3713, 'PR_ATTACH_CONTENT_LOCATION', TEXT],
  [0x3714, 'PR_ATTACH_FLAGS', LONG],
  [0x3716, 'PR_ATTACH_CONTENT_DISPOSITION', TEXT],
  [0x3fde, 'PR_INTERNET_CPID', LONG],
  [0x3ff1, 'PR_MESSAGE_LOCALE_ID', LONG],
  [0x3ffd, 'PR_MESSAGE_CODEPAGE', LONG],
  [0x7ffe, 'PR_ATTACHMENT_HIDDEN', BOOL],
  [0x7fff, 'PR_ATTACHMENT_CONTACTPHOTO', BOOL],
];

const NAMES = new Map(KNOWN.map(([id, name]) => [id, name]));

// Every tag the page asks for by default.
export const KNOWN_TAGS = KNOWN.flatMap(([id, , types]) => types.map((type) => ((id << 16) | type) >>> 0));

export function propertyName(tagText) {
  return NAMES.get(parseInt(tagText, 16) >>> 16) || '';
}

// A tag typed by the user: "0x0037001E", "0037001e" or a decimal number.
export function parseTag(text) {
  const trimmed = text.trim();
  const value = /^(0x)?[0-9a-f]{8}$/i.test(trimmed) ? parseInt(trimmed.replace(/^0x/i, ''), 16)
    : /^[0-9]+$/.test(trimmed) ? Number(trimmed) : NaN;
  return Number.isInteger(value) && value >= 0 && value <= 0xffffffff ? value >>> 0 : null;
}
