// The WebAssembly reader: the module, the OLE library and a host compiled
// from the project's C++ (web/wasm/viewer_api.cpp), reached through cwrap.
import createTnefModule from 'tnef-module';
import wasmBase64 from 'tnef-wasm';

// Extract flags and charsets of reader/host.h.
export const OMIT_HEADER = 2;
export const PREFER_STORED_BODY = 4;
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
      close: fn('tnefViewerClose', null, ['number']),
      listing: fn('tnefViewerListing', 'string', ['number']),
      properties: fn('tnefViewerProperties', 'string', ['number', 'number', 'number', 'number']),
      extract: fn('tnefViewerExtract', 'string', ['number', 'number', 'number', 'number']),
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

  // Subfile `index` as the module extracts it: {info, bytes}.
  extract(index, flags = 0, charset = 0) {
    const { module, api } = this.reader;
    const info = JSON.parse(api.extract(this.handle, index, flags, charset));
    const at = api.extractedBytes(this.handle);
    const bytes = module.HEAPU8.slice(at, at + info.size);
    api.releaseExtracted(this.handle);
    return { info, bytes };
  }

  close() {
    this.reader.api.close(this.handle);
    this.reader.module.FS.unlink(this.path);
  }
}
