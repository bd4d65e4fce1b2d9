// The viewer page: a file is dropped or picked, read into memory, and shown;
// nothing leaves the browser.
import { byId, formatSize, h, show } from './dom.js';
import { readFile, recognise } from './input.js';
import { MessageView } from './message_view.js';
import { loadReader } from './reader.js';

// The streams open now: the file's, then each embedded message opened in it.
const trail = [];

function status(text) {
  byId('status').textContent = text;
}

function problem(text) {
  const box = byId('problem');
  box.textContent = text;
  show(box, Boolean(text));
}

function closeAll() {
  while (trail.length) trail.pop().stream.close();
  byId('view').replaceChildren();
  show(byId('trail'), false);
}

function showTop() {
  const top = trail[trail.length - 1];
  const view = new MessageView(top.stream, { openNested, status }).render();
  byId('view').replaceChildren(view);
  const back = byId('back');
  show(byId('trail'), trail.length > 1);
  if (trail.length > 1) {
    back.textContent = `← Back to ${trail[trail.length - 2].label}`;
    byId('where').textContent = `Embedded message: ${top.label}`;
  }
  performance.mark('tnef-shown');
  const heading = view.querySelector('#summary') || view;
  heading.setAttribute('tabindex', '-1');
  heading.focus({ preventScroll: true });
}

async function openStream(bytes, label) {
  const reader = await loadReader();
  trail.push({ stream: reader.open(bytes, label), label });
  showTop();
}

function openNested(parent, index, label) {
  trail.push({ stream: parent.reader.openEmbedded(parent, index, label), label });
  showTop();
}

function back() {
  if (trail.length < 2) return;
  trail.pop().stream.close();
  showTop();
}

function openPart(part) {
  closeAll();
  problem('');
  openStream(part.bytes, part.name).catch((error) => problem(`Cannot show ${part.name}: ${error.message}`));
}

function offerParts(parts) {
  const list = h('ul', { class: 'parts' }, parts.map((part, i) => h('li', {},
    h('button', { type: 'button', onclick: () => openPart(part) },
      `Open part ${i + 1}: ${part.name} (${formatSize(part.bytes.length)})`))));
  return h('section', { class: 'mail' }, h('p', {}, `This mail carries ${parts.length} TNEF parts.`), list);
}

function showMailContext(mail, parts) {
  const line = [mail.subject && `“${mail.subject}”`, mail.from && `from ${mail.from}`].filter(Boolean).join(' ');
  byId('context').replaceChildren(h('p', { class: 'note' }, `From the mail ${line || '(no subject)'}.`),
    parts.length > 1 ? offerParts(parts) : '');
}

async function openFile(file) {
  closeAll();
  problem('');
  byId('context').replaceChildren();
  const progress = byId('progress');
  try {
    performance.mark('tnef-start');
    status(`Reading ${file.name}…`);
    const bytes = await readFile(file, (done, total) => {
      show(progress);
      progress.max = total;
      progress.value = done;
      status(`Reading ${file.name}: ${Math.floor((done / total) * 100)}%`);
    });
    performance.mark('tnef-read');
    show(progress, false);
    const input = await recognise(bytes);
    if (input.kind === 'unknown') {
      status('');
      problem(`${file.name} is neither a TNEF stream (winmail.dat) nor a mail message.`);
      return;
    }
    if (input.kind === 'mail') {
      if (!input.parts.length) {
        status('');
        problem(`The mail in ${file.name} carries no TNEF part (winmail.dat).`);
        return;
      }
      showMailContext(input.mail, input.parts);
      await openStream(input.parts[0].bytes, input.parts[0].name);
    } else {
      await openStream(bytes, file.name);
    }
    status(`Showing ${file.name}.`);
  } catch (error) {
    show(progress, false);
    status('');
    problem(`Cannot show ${file.name}: ${error.message || error}`);
  }
}

function setUp() {
  const picker = byId('file');
  byId('choose').addEventListener('click', () => picker.click());
  picker.addEventListener('change', () => {
    if (picker.files.length) openFile(picker.files[0]);
    picker.value = '';
  });
  byId('back').addEventListener('click', back);
  const zone = document.documentElement;
  zone.addEventListener('dragover', (event) => {
    event.preventDefault();
    document.body.classList.add('dragging');
  });
  zone.addEventListener('dragleave', (event) => {
    if (!event.relatedTarget) document.body.classList.remove('dragging');
  });
  zone.addEventListener('drop', (event) => {
    event.preventDefault();
    document.body.classList.remove('dragging');
    const file = event.dataTransfer?.files?.[0];
    if (file) openFile(file);
  });
  // Load the reader while the user looks for a file.
  loadReader().catch((error) => problem(`The reader could not start: ${error.message || error}`));
}

setUp();
// For scripts and tests that drive the page: the reader itself.
window.tnefViewer = { loadReader };
