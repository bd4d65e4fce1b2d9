// The WebAssembly reader: the module, the OLE library and a host compiled
// from the project's C++ (web/wasm/viewer_api.cpp), reached through cwrap.
import createTnefModule from 'tnef-module';
import wasmBase64 from 'tnef-wasm';

// Bits of an extraction's resultFlags and charsets of reader/host.h.
export const RESULT_CHARSET_CONVERTED = 4;
export const CHARSET_UTF8 = 53;

const TNEF_SIGNATURE = [0x78, 0x9f, 0x3e, 0x22];

export function isTnef(bytes) {
  return bytes.length >= 4 && TNEF_SIGNATURE.every((b, i) => bytes[i] === b);
}

function decodeBase64(text) {
  const binary = atob(text);
  const bytes = new Uint8Array(binary.length);
  for (let i = 0; i < binary.length; ++i) bytes[i] = binary.charCodeAt(i);
  return bytes;
}

let loading = null;

// The reader, made once per page.
export function loadReader() {
  loading ||= createTnefModule({
    wasmBinary: decodeBase64(wasmBase64),
    print: () => {},
    printErr: () => {},
  }).then((module) => new Reader(module));
  return loading;
}

class Reader {
  constructor(module) {
    this.module = module;
    this.files = 0;
    const fn = (name, result, args) => module.cwrap(name, result, args);
    this.api = {
      open: fn('tnefViewerOpen', 'number', ['string']),
      openEmbedded: fn('tnefViewerOpenEmbedded', 'number', ['number', 'number']),
      close: fn('tnefViewerClose', null, ['number']),
      listing: fn('tnefViewerListing', 'string', ['number']),
      properties: fn('tnefViewerProperties', 'string', ['number', 'number', 'number', 'number']),
      extract: fn('tnefViewerExtract', 'string', ['number', 'number', 'number', 'number']),
      readableRtf: fn('tnefViewerReadableRtf', 'string', ['number', 'number']),
      extractedBytes: fn('tnefViewerExtractedBytes', 'number', ['number']),
      releaseExtracted: fn('tnefViewerReleaseExtracted', null, ['number']),
      convert: fn('tnefViewerConvert', 'number', ['number', 'number', 'number', 'number']),
      converted: fn('tnefViewerConverted', 'number', []),
    };
  }

  // Opens a stream held in `bytes`. The reader takes the buffer over
  // without copying it: the caller must not change it afterwards.
  open(bytes, name) {
    const { FS } = this.module;
    const path = `/stream-${++this.files}`;
    const file = FS.open(path, 'w');
    FS.write(file, bytes, 0, bytes.length, 0, true);
    FS.close(file);
    return new TnefStream(this, this.api.open(path), path, name);
  }

  // The embedded message at `index` of `parent`, as a stream of its own.
  openEmbedded(parent, index, name) {
    return new TnefStream(this, this.api.openEmbedded(parent.handle, index), null, name);
  }

  // Text of `bytes` in charset `from` converted to charset `to` by the
  // host's conversions (ids of the HTML charset table).
  convert(bytes, from, to) {
    const { module } = this;
    const source = module._malloc(bytes.length || 1);
    try {
      module.HEAPU8.set(bytes, source);
      const length = this.api.convert(from, to, source, bytes.length);
      if (length < 0) return null;
      const target = this.api.converted();
      return module.HEAPU8.slice(target, target + length);
    } finally {
      module._free(source);
    }
  }
}

class TnefStream {
  constructor(reader, handle, path, name) {
    this.reader = reader;
    this.handle = handle;
    this.path = path;
    this.name = name;
    this.cachedListing = null;
  }

  // The listing in the form of `tnef-reader list --json`.
  listing() {
    this.cachedListing ||= JSON.parse(this.reader.api.listing(this.handle));
    return this.cachedListing;
  }

  // The properties among `tags` that subfile `index` has.
  properties(index, tags) {
    const { module, api } = this.reader;
    const list = module._malloc(tags.length * 4 || 4);
    try {
      module.HEAPU32.set(tags, list >> 2);
      return JSON.parse(api.properties(this.handle, index, list, tags.length));
    } finally {
      module._free(list);
    }
  }

  // Subfile `index` as the module extracts it: {info, bytes}. A message
  // comes in the module's order of bodies (text first), or with `stored`
  // its stored HTML or RTF body first; `readable` ('html' or 'text') makes
  // an RTF body readable.
  extract(index, { stored = false, charset = 0, readable = null } = {}) {
    const { module, api } = this.reader;
    let info = JSON.parse(api.extract(this.handle, index, stored ? 1 : 0, charset));
    if (readable && info.form === 'rtf') {
      info = { ...info, form: readable, readable: JSON.parse(api.readableRtf(this.handle, readable === 'html' ? 1 : 0)) };
      info.size = info.readable.size;
    }
    const at = api.extractedBytes(this.handle);
    const bytes = module.HEAPU8.slice(at, at + info.size);
    api.releaseExtracted(this.handle);
    return { info, bytes };
  }

  close() {
    this.reader.api.close(this.handle);
    if (this.path) this.reader.module.FS.unlink(this.path);
  }
}
