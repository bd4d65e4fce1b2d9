// The browser's side of the WebAssembly host's charsets: TextDecoder reads
// every multi-byte charset, and a reverse table made by decoding every
// sequence once writes them.
mergeInto(LibraryManager.library, {
  $tnefCharsets: {
    decoder: null,
    // Plain objects: the library's values are written out as source text.
    reverse: {},
    labels: {},  // label pointer -> text
    label: function (pointer) {
      return (tnefCharsets.labels[pointer] ||= UTF8ToString(pointer));
    },
    // Code point -> bytes for `label`, made on first use.
    reverseTable: function (label) {
      let table = tnefCharsets.reverse[label];
      if (table) return table;
      table = new Map();
      const decoder = new TextDecoder(label, { fatal: true });
      const add = (bytes) => {
        let text;
        try {
          text = decoder.decode(bytes);
        } catch (e) {
          return;
        }
        const chars = [...text];
        const code = chars.length === 1 ? chars[0].codePointAt(0) : 0;
        if (code >= 0x80 && !table.has(code)) table.set(code, bytes.slice());
      };
      for (let b = 0x80; b <= 0xff; ++b) add(Uint8Array.of(b));
      const pair = new Uint8Array(2);
      for (let lead = 0x81; lead <= 0xfe; ++lead) {
        pair[0] = lead;
        for (let trail = 0x40; trail <= 0xfe; ++trail) {
          pair[1] = trail;
          add(pair);
        }
      }
      if (label === 'gb18030') {
        // Four-byte sequences: the rest of the Basic Multilingual Plane...
        const quad = new Uint8Array(4);
        for (let b1 = 0x81; b1 <= 0x84; ++b1) {
          for (let b2 = 0x30; b2 <= 0x39; ++b2) {
            for (let b3 = 0x81; b3 <= 0xfe; ++b3) {
              for (let b4 = 0x30; b4 <= 0x39; ++b4) {
                quad.set([b1, b2, b3, b4]);
                add(quad);
              }
            }
          }
        }
      }
      tnefCharsets.reverse[label] = table;
      return table;
    },
  },

  tnefDecodeBegin__deps: ['$tnefCharsets'],
  tnefDecodeBegin: function (label) {
    try {
      tnefCharsets.decoder = new TextDecoder(tnefCharsets.label(label));
      return 1;
    } catch (e) {
      tnefCharsets.decoder = null;
      return 0;
    }
  },

  // Decodes `length` bytes into code points at `out` (room for length + 4);
  // `last` flushes what the decoder still holds. Returns the count.
  tnefDecodeNext__deps: ['$tnefCharsets'],
  tnefDecodeNext: function (bytes, length, out, last) {
    const text = tnefCharsets.decoder.decode(HEAPU8.subarray(bytes, bytes + length),
                                             { stream: !last });
    let count = 0;
    for (const ch of text) HEAPU32[(out >> 2) + count++] = ch.codePointAt(0);
    return count;
  },

  // The bytes of `code` in `label` written at `out` (room for 4); returns
  // their count, 0 when the charset has no such character.
  tnefEncodeCodePoint__deps: ['$tnefCharsets'],
  tnefEncodeCodePoint: function (label, code, out) {
    const name = tnefCharsets.label(label);
    let bytes = tnefCharsets.reverseTable(name).get(code);
    if (!bytes && name === 'gb18030' && code >= 0x10000 && code <= 0x10ffff) {
      // ... and the supplementary planes, counted from 0x90 0x30 0x81 0x30.
      let linear = code - 0x10000;
      const b4 = 0x30 + (linear % 10); linear = Math.floor(linear / 10);
      const b3 = 0x81 + (linear % 126); linear = Math.floor(linear / 126);
      const b2 = 0x30 + (linear % 10); linear = Math.floor(linear / 10);
      bytes = Uint8Array.of(0x90 + linear, b2, b3, b4);
    }
    if (!bytes) return 0;
    HEAPU8.set(bytes, out);
    return bytes.length;
  },
});
