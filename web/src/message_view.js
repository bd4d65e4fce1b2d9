// One opened stream shown: the summary, the body, the attachments and, on
// demand, the MAPI properties of the message or of an attachment.
import { frameDocument, declaredCharset } from './body.js';
import { download, formatSize, formatTime, h } from './dom.js';
import { KNOWN_TAGS, parseTag, propertyName } from './properties.js';
import { CHARSET_UTF8, RESULT_CHARSET_CONVERTED } from './reader.js';

const TAG_CONTENT_ID = [0x3712001e, 0x3712001f];
const TAG_MIME_TAG = [0x370e001e, 0x370e001f];
// Inline images larger than this are left out of the body.
const LARGEST_INLINE_IMAGE = 8 * 1024 * 1024;

const SUMMARY_FIELDS = [
  ['from', 'From'], ['sent', 'Sent'], ['to', 'To'], ['cc', 'Cc'], ['subject', 'Subject'],
  ['importance', 'Importance'],
];

function utf8(bytes, fatal = false) {
  return new TextDecoder('utf-8', { fatal }).decode(bytes);
}

// Body bytes as text: UTF-8 when the module converted them or the RTF
// readers made them, else in the
// charset an HTML body names, else UTF-8 if they are, else the message's
// charset through the host's conversions.
function bodyText(result, stream) {
  const { bytes, info } = result;
  if (info.readable || info.resultFlags & RESULT_CHARSET_CONVERTED) return utf8(bytes);
  const label = info.form === 'html' ? declaredCharset(bytes) : null;
  if (label) {
    try {
      return new TextDecoder(label).decode(bytes);
    } catch (e) {
      // A name the browser does not know: read on.
    }
  }
  try {
    return utf8(bytes, true);
  } catch (e) {
    const charset = stream.listing().subfiles[0]?.charset || 0;
    const converted = stream.reader.convert(bytes, charset, CHARSET_UTF8);
    return converted ? utf8(converted) : new TextDecoder('windows-1252').decode(bytes);
  }
}

// The forms the body comes in: {html, text, rtf}, each {bytes, info}. An
// RTF body is also made readable, as HTML and as text, where the message
// has no such body of its own.
function bodyForms(stream, index) {
  const forms = {};
  for (const stored of [true, false]) {
    const result = stream.extract(index, { stored, charset: CHARSET_UTF8 });
    if (result.bytes.length > 0 && !forms[result.info.form]) forms[result.info.form] = { ...result, stored };
  }
  if (forms.rtf) {
    for (const readable of ['html', 'text']) {
      forms[readable] ||= stream.extract(index, { stored: forms.rtf.stored, charset: CHARSET_UTF8, readable });
    }
  }
  return forms;
}

function valueText(property) {
  const value = property.value === null ? '—' : String(property.value);
  return property.size ? `${value} … (${property.size} bytes, cut)` : value;
}

export class MessageView {
  // `actions.openNested(stream, index, name)` opens an embedded message;
  // `actions.status(text)` tells the user what happened.
  constructor(stream, actions) {
    this.stream = stream;
    this.actions = actions;
    this.listing = stream.listing();
    this.subfiles = this.listing.subfiles || [];
    this.messageIndex = this.subfiles.findIndex((s) => s.type === 'message');
  }

  render() {
    const { listing } = this;
    const parts = [];
    if (listing.error) {
      const read = this.subfiles.length ? 'Showing what could be read.' : '';
      parts.push(h('div', { class: 'problem', role: 'alert' },
        h('strong', {}, this.subfiles.length ? 'This stream is damaged: ' : 'Cannot read this file: '),
        listing.error, read ? ` ${read}` : ''));
    }
    if (!this.subfiles.length) return h('article', { class: 'message' }, parts);
    parts.push(this.renderSummary());
    if (this.messageIndex >= 0) parts.push(this.renderBody());
    parts.push(this.renderAttachments());
    this.propertiesPanel = h('section', { class: 'properties', 'aria-live': 'polite' });
    parts.push(h('p', {}, h('button', {
      type: 'button', onclick: () => this.showProperties(Math.max(this.messageIndex, 0), 'the message'),
    }, 'MAPI properties of the message')), this.propertiesPanel);
    return h('article', { class: 'message' }, parts);
  }

  renderSummary() {
    const summary = this.listing.summary || {};
    const rows = SUMMARY_FIELDS.filter(([key]) => summary[key]).map(([key, label]) => [
      h('dt', {}, label),
      h('dd', { dataset: { field: key } },
        key === 'sent' ? h('time', { datetime: summary.sent }, formatTime(summary.sent)) : summary[key]),
    ]);
    return h('dl', { class: 'summary', id: 'summary' }, rows);
  }

  renderBody() {
    const forms = bodyForms(this.stream, this.messageIndex);
    const order = [['html', 'Formatted'], ['text', 'Plain text'], ['rtf', 'RTF']].filter(([f]) => forms[f]);
    const view = h('div', { class: 'body-view', id: 'body-view' });
    if (!order.length) {
      view.append(h('p', { class: 'note' }, 'The message has no body.'));
      return h('section', { class: 'body', 'aria-label': 'Message body' }, view);
    }
    const buttons = order.map(([form, label]) => h('button', {
      type: 'button', 'aria-pressed': 'false', dataset: { form },
      onclick: () => select(form),
    }, label));
    const select = (form) => {
      for (const button of buttons) button.setAttribute('aria-pressed', String(button.dataset.form === form));
      view.replaceChildren(this.bodyElement(form, forms[form]));
    };
    select(order[0][0]);
    const switcher = order.length > 1
      ? h('div', { class: 'switch', role: 'group', 'aria-label': 'Show the body as' }, buttons) : null;
    return h('section', { class: 'body', 'aria-label': 'Message body' }, switcher, view);
  }

  bodyElement(form, result) {
    const text = bodyText(result, this.stream);
    if (form === 'html') {
      return h('iframe', {
        class: 'html-body', id: 'body-frame', title: 'Message body', sandbox: '',
        referrerpolicy: 'no-referrer', srcdoc: frameDocument(text, (id) => this.inlineImage(id)),
      });
    }
    const note = form === 'rtf' ? h('p', { class: 'note' }, 'The body as it is stored, in RTF.') : null;
    return h('div', {}, note, h('pre', { class: 'text-body', id: 'body-text', tabindex: '0' }, text));
  }

  // A data: URL for the attachment whose content ID is `id`.
  inlineImage(id) {
    this.contentIds ||= new Map(this.attachments().map((s) => {
      const found = this.stream.properties(s.index, [...TAG_CONTENT_ID, ...TAG_MIME_TAG]).properties;
      const value = (tags) => found.find((p) => tags.includes(parseInt(p.tag, 16) >>> 0))?.value;
      return [String(value(TAG_CONTENT_ID) || '').replace(/^<|>$/g, ''), { index: s.index, type: value(TAG_MIME_TAG) }];
    }));
    const target = this.contentIds.get(id);
    if (!target || !target.type || !/^image\//i.test(target.type)) return null;
    const { bytes } = this.stream.extract(target.index);
    if (bytes.length > LARGEST_INLINE_IMAGE) return null;
    let binary = '';
    for (let i = 0; i < bytes.length; i += 0x8000) binary += String.fromCharCode(...bytes.subarray(i, i + 0x8000));
    return `data:${target.type};base64,${btoa(binary)}`;
  }

  attachments() {
    return this.subfiles.filter((s, i) => i !== this.messageIndex && s.type !== 'root');
  }

  renderAttachments() {
    const attachments = this.attachments();
    const heading = h('h2', {}, `Attachments (${attachments.length})`);
    if (!attachments.length) return h('section', { class: 'attachments' }, heading, h('p', { class: 'note' }, 'None.'));
    const rows = attachments.map((s) => {
      const name = s.name ?? `subfile-${s.index}`;
      const embedded = Boolean(s.embedded);
      const type = embedded ? 'message' : s.type === 'ole' ? 'OLE object' : 'file';
      return h('tr', { dataset: { index: s.index, name: s.name ?? '', size: s.size, type: s.type } },
        h('td', { class: 'name' }, name, s.status ? h('span', { class: 'note' }, ` (damaged: ${s.status})`) : null),
        h('td', {}, type),
        h('td', { class: 'size', title: `${s.size} bytes` }, formatSize(s.size)),
        h('td', {}, h('div', { class: 'actions' },
          embedded ? h('button', { type: 'button', 'aria-label': `Open ${name}`, onclick: () => this.openNested(s) }, 'Open') : null,
          h('button', { type: 'button', 'aria-label': `Download ${name}`, onclick: () => this.save(s, embedded) }, 'Download'),
          h('button', { type: 'button', 'aria-label': `Properties of ${name}`, onclick: () => this.showProperties(s.index, name) }, 'Properties'))));
    });
    return h('section', { class: 'attachments' }, heading,
      h('table', { id: 'attachments' },
        h('thead', {}, h('tr', {}, h('th', { scope: 'col' }, 'Name'), h('th', { scope: 'col' }, 'Type'),
          h('th', { scope: 'col' }, 'Size'), h('th', { scope: 'col' }, h('span', { class: 'visually-hidden' }, 'Actions')))),
        h('tbody', {}, rows)));
  }

  save(subfile, embedded) {
    const { info, bytes } = this.stream.extract(subfile.index);
    if (info.linkedPath && bytes.length === 0) {
      this.actions.status(`This object only links to ${info.linkedPath}: there is nothing in the stream to save.`);
      return;
    }
    if (info.status !== 0) this.actions.status(`The attachment is damaged (status ${info.status}); saving what could be read.`);
    const name = info.payloadName || subfile.name || `subfile-${subfile.index}`;
    download(bytes, embedded ? `${name}.tnef` : name);
  }

  openNested(subfile) {
    this.actions.openNested(this.stream, subfile.index, subfile.name || `subfile-${subfile.index}`);
  }

  showProperties(index, label) {
    const lookup = h('input', { type: 'text', id: 'tag-lookup', placeholder: '0x0037001E', size: 12, spellcheck: 'false' });
    const table = h('tbody', {});
    const fill = (tags, replace) => {
      const answer = this.stream.properties(index, tags);
      const rows = answer.properties.map((p) => h('tr', {},
        h('td', { class: 'tag' }, p.tag), h('td', {}, propertyName(p.tag)), h('td', {}, p.type),
        h('td', { class: 'value' }, valueText(p))));
      if (replace) table.replaceChildren(...rows);
      else table.prepend(...rows);
      return answer.properties.length;
    };
    const found = fill(KNOWN_TAGS, true);
    const message = h('p', { class: 'note', role: 'status' }, `${found} of the well-known properties found.`);
    const form = h('form', {
      class: 'lookup',
      onsubmit: (event) => {
        event.preventDefault();
        const tag = parseTag(lookup.value);
        if (tag === null) message.textContent = `"${lookup.value}" is not a property tag (eight hex digits, like 0x0037001E).`;
        else message.textContent = fill([tag], false) ? `Found ${lookup.value}.` : `No property ${lookup.value}.`;
      },
    }, h('label', { for: 'tag-lookup' }, 'Look up a tag: '), lookup, ' ', h('button', { type: 'submit' }, 'Look up'));
    const heading = h('h2', { tabindex: '-1' }, `MAPI properties of ${label}`);
    this.propertiesPanel.replaceChildren(heading,
      h('div', { class: 'scroll' }, h('table', { class: 'property-table' },
        h('thead', {}, h('tr', {}, ['Tag', 'Name', 'Type', 'Value'].map((t) => h('th', { scope: 'col' }, t)))), table)),
      message, form,
      h('button', { type: 'button', onclick: () => this.propertiesPanel.replaceChildren() }, 'Close properties'));
    heading.focus();
  }
}
