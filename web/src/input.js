// What the user drops or picks: read into memory, then recognised as a TNEF
// stream or as a mail message that carries TNEF parts (read by postal-mime).
import PostalMime from 'postal-mime';
import { isTnef } from './reader.js';

// Files above this size are read in pieces, with progress.
const PROGRESS_FROM = 8 * 1024 * 1024;

// The bytes of `file`, read once into one buffer. `onProgress(done, total)`
// hears about large files as they come in.
export async function readFile(file, onProgress) {
  if (file.size < PROGRESS_FROM || typeof file.stream !== 'function') {
    return new Uint8Array(await file.arrayBuffer());
  }
  const bytes = new Uint8Array(file.size);
  const reader = file.stream().getReader();
  let done = 0;
  for (;;) {
    const chunk = await reader.read();
    if (chunk.done) break;
    if (done + chunk.value.length > bytes.length) throw new Error('the file grew while it was read');
    bytes.set(chunk.value, done);
    done += chunk.value.length;
    onProgress(done, file.size);
  }
  return done === bytes.length ? bytes : bytes.subarray(0, done);
}

// A mail message starts with header lines ("Name: value"), or with the
// "From " line of an mbox.
function looksLikeMail(bytes) {
  const head = new TextDecoder('latin1').decode(bytes.subarray(0, 1024));
  return /^(From |[\x21-\x39\x3b-\x7e]+:)/.test(head);
}

const TNEF_TYPES = new Set(['application/ms-tnef', 'application/vnd.ms-tnef']);
const TNEF_NAMES = /^win(mail)?\.dat$/i;

function tnefPart(attachment) {
  const content = new Uint8Array(attachment.content);
  const byType = TNEF_TYPES.has((attachment.mimeType || '').toLowerCase());
  const byName = TNEF_NAMES.test(attachment.filename || '') && isTnef(content);
  return byType || byName ? { name: attachment.filename || 'winmail.dat', bytes: content } : null;
}

// {kind: 'tnef', bytes} | {kind: 'mail', mail: {from, subject, date}, parts: [{name, bytes}]}
// | {kind: 'unknown'}.
export async function recognise(bytes) {
  if (isTnef(bytes)) return { kind: 'tnef', bytes };
  if (!looksLikeMail(bytes)) return { kind: 'unknown' };
  const email = await PostalMime.parse(bytes);
  const parts = (email.attachments || []).map(tnefPart).filter(Boolean);
  const from = email.from ? [email.from.name, email.from.address && `<${email.from.address}>`] : [];
  return {
    kind: 'mail',
    mail: { from: from.filter(Boolean).join(' '), subject: email.subject || '', date: email.date || '' },
    parts,
  };
}
