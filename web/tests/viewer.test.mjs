// The viewer in a real browser: Debian's Chromium, headless, driven by
// playwright-core. The page is opened from disk; every sample it shows is
// checked against the tool (build/cli/tnef-reader) on the same file.
//
// Environment: TNEF_BUILD (the native build, default build/), TNEF_CORPUS
// (default ../shared/corpus); the page is build-web/tnef-viewer.html.
import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { createHash } from 'node:crypto';
import { existsSync, mkdirSync, mkdtempSync, readdirSync, readFileSync, statSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join, resolve } from 'node:path';
import { after, before, test } from 'node:test';
import { fileURLToPath } from 'node:url';
import { chromium } from 'playwright-core';
import { CHROMIUM } from './chromium.mjs';

const root = resolve(dirname(fileURLToPath(import.meta.url)), '../..');
const buildDir = resolve(root, process.env.TNEF_BUILD || 'build');
const corpus = resolve(root, process.env.TNEF_CORPUS || '../shared/corpus');
const pagePath = join(root, 'build-web/tnef-viewer.html');
const samples = join(root, 'build-web/samples');
const tool = join(buildDir, 'cli/tnef-reader');

let browser;
let context;
const requests = [];

function run(args) {
  const result = spawnSync(tool, args, { encoding: 'utf8' });
  assert.ok(result.status === 0 || result.status === 3, `tnef-reader ${args.join(' ')}: ${result.stderr}`);
  return JSON.parse(result.stdout);
}

function sha256(bytes) {
  return createHash('sha256').update(bytes).digest('hex');
}

async function openPage({ viewport, colorScheme } = {}) {
  const page = await context.newPage();
  if (viewport) await page.setViewportSize(viewport);
  if (colorScheme) await page.emulateMedia({ colorScheme });
  await page.goto(`file://${pagePath}`);
  return page;
}

// Loads `file` into the page and waits until it is shown.
async function show(page, file) {
  const name = file.split('/').pop();
  await page.setInputFiles('#file', file);
  await page.waitForFunction((name) => {
    const problem = document.getElementById('problem');
    return document.getElementById('status').textContent === `Showing ${name}.` ||
      (!problem.hidden && problem.textContent.includes(name));
  }, name);
}

before(async () => {
  assert.ok(existsSync(pagePath), `${pagePath} is missing: run scripts/web.sh`);
  mkdirSync(samples, { recursive: true });
  const made = spawnSync(join(buildDir, 'web/tests/samples/make-web-samples'), [samples], { encoding: 'utf8' });
  assert.equal(made.status, 0, made.stderr);
  browser = await chromium.launch(CHROMIUM);
  context = await browser.newContext({ acceptDownloads: true });
  // Every request after the page itself: none may happen.
  context.on('request', (request) => {
    if (request.url() !== `file://${pagePath}`) requests.push(request.url());
  });
});

after(async () => {
  await browser?.close();
});

test('the page is one file under 1 MiB', () => {
  assert.ok(statSync(pagePath).size < 1024 * 1024, `${statSync(pagePath).size} bytes`);
});

test('every corpus sample: listing, summary and downloads as the tool gives them', async (t) => {
  if (!existsSync(corpus)) {
    t.skip(`no corpus at ${corpus}`);
    return;
  }
  const page = await openPage();
  const out = mkdtempSync(join(tmpdir(), 'tnef-viewer-extract-'));
  for (const name of readdirSync(corpus).filter((n) => n.endsWith('.tnef')).sort()) {
    const file = join(corpus, name);
    const listing = run(['list', '--json', file]);
    await show(page, file);
    const message = listing.subfiles.findIndex((s) => s.type === 'message');
    const attachments = listing.subfiles.filter((s, i) => i !== message);
    if (listing.error) {
      assert.match(await page.locator('.message .problem').innerText(), new RegExp(listing.error.replace(/[()]/g, '\\$&')), name);
    }
    const summary = await page.$$eval('#summary dd', (dds) =>
      Object.fromEntries(dds.map((dd) => [dd.dataset.field, dd.querySelector('time')?.getAttribute('datetime') ?? dd.textContent])));
    for (const [key, value] of Object.entries(listing.summary)) {
      if (key !== 'bcc') assert.equal(summary[key], value ?? undefined, `${name}: ${key}`);
    }
    const rows = await page.$$eval('#attachments tbody tr', (trs) => trs.map((tr) => ({ ...tr.dataset })));
    assert.deepEqual(rows, attachments.map((s) => ({
      index: String(s.index), name: s.name ?? '', size: String(s.size), type: s.type,
    })), name);
    if (!attachments.length) continue;
    const extracted = run(['extract', '--json', '--overwrite', '-C', join(out, name), file]);
    // Files only: the tool writes an embedded message as a folder.
    for (const written of extracted.written.filter((w) => w.path && w.index !== message && statSync(w.path).isFile())) {
      const [download] = await Promise.all([
        page.waitForEvent('download'),
        page.click(`#attachments tr[data-index="${written.index}"] button:text-is("Download")`),
      ]);
      assert.equal(sha256(readFileSync(await download.path())), sha256(readFileSync(written.path)),
        `${name}: subfile ${written.index}`);
    }
  }
  await page.close();
});

// The text a person sees of the body shown: the frame's, or the text view's.
async function shownBody(page) {
  if (await page.locator('#body-frame').count()) return page.frameLocator('#body-frame').locator('body').innerText();
  return page.locator('#body-text').innerText();
}

test('HTML- and RTF-bodied corpus messages show their words', async (t) => {
  if (!existsSync(corpus)) {
    t.skip(`no corpus at ${corpus}`);
    return;
  }
  const page = await openPage();
  for (const [file, words] of [['body.tnef', 'Amendments 1-10 of the Constitution'],
    ['rtf.tnef', 'Senior Engineer/QADirector Team']]) {
    await show(page, join(corpus, file));
    const body = await shownBody(page);
    assert.ok(body.includes(words), `${file}: ${body}`);
    assert.doesNotMatch(body, /\\(par|rtf1|fonttbl)\b/, `${file} is shown readable`);
  }
  await page.close();
});

// The subject and attachment name of each code-page sample, as
// web/tests/samples/make_web_samples.cpp writes them, and the id of its
// code page in the charset table.
const CODE_PAGES = [
  { file: 'cp932.tnef', charset: 1, subject: '会議の議事録', name: '議事録.txt' },
  { file: 'cp936.tnef', charset: 2, subject: '会议纪要', name: '纪要.txt' },
  { file: 'cp949.tnef', charset: 4, subject: '회의록 요약', name: '회의록.txt' },
  { file: 'cp950.tnef', charset: 3, subject: '會議記錄', name: '記錄.txt' },
  { file: 'cp1251.tnef', charset: 6, subject: 'Протокол встречи', name: 'протокол.txt' },
];

test('text in double-byte and other code pages reads as the tool reads it', async () => {
  const page = await openPage();
  for (const sample of CODE_PAGES) {
    const file = join(samples, sample.file);
    const listing = run(['list', '--json', file]);
    assert.equal(listing.summary.subject, sample.subject, `the tool on ${sample.file}`);
    assert.equal(listing.subfiles[1].name, sample.name, `the tool on ${sample.file}`);
    await show(page, file);
    assert.equal(await page.locator('#summary dd[data-field="subject"]').innerText(), sample.subject);
    assert.equal(await page.locator('#attachments td.name').innerText(), sample.name);
    assert.equal((await page.locator('#body-text').innerText()).trim(), sample.subject);
    // Back and forth through the host's conversions, as UTF-8 bytes.
    const roundTrip = await page.evaluate(async ({ subject, charset }) => {
      const reader = await window.tnefViewer.loadReader();
      const encoded = reader.convert(new TextEncoder().encode(subject), 53, charset);
      return new TextDecoder().decode(reader.convert(encoded, charset, 53));
    }, sample);
    assert.equal(roundTrip, sample.subject, sample.file);
  }
  await page.close();
});

test('an HTML body is shown in a sandboxed frame where no script runs and nothing loads', async () => {
  const page = await openPage();
  await page.evaluate(() => {
    window.posted = [];
    window.addEventListener('message', (event) => window.posted.push(event.data));
  });
  await show(page, join(samples, 'hostile.tnef'));
  const frame = page.frameLocator('#body-frame');
  assert.equal(await frame.locator('#greeting').innerText(), 'Quarterly figures attached');
  assert.equal(await page.locator('#body-frame').getAttribute('sandbox'), '');
  assert.match(await page.locator('#body-frame').getAttribute('srcdoc'), /default-src 'none'/);
  assert.equal(await frame.locator('script, iframe, [onerror]').count(), 0);
  assert.match(await frame.locator('#logo').getAttribute('src'), /^data:image\/gif;base64,R0lGODlh/);
  await frame.locator('a').click();
  assert.deepEqual(await page.evaluate(() => window.posted), []);
  assert.equal(await page.title(), 'TNEF viewer');
  await page.screenshot({ path: join(root, 'build-web/viewer.png'), fullPage: true });

  await page.click('button:text-is("Plain text")');
  assert.equal(await page.locator('#body-text').innerText(), 'Quarterly figures attached (text)');
  await page.click('button:text-is("MAPI properties of the message")');
  const subject = page.locator('.property-table tr', { hasText: 'PR_SUBJECT' });
  assert.match(await subject.innerText(), /0x0037001E\s+PR_SUBJECT\s+text8\s+Figures <b>bold<\/b> & more/);
  await page.fill('#tag-lookup', '0x37050003');
  await page.click('button:text-is("Look up")');
  assert.equal(await page.locator('.properties [role="status"]').innerText(), 'No property 0x37050003.');
  await page.close();
});

test('a mail carrying TNEF parts; an embedded message opens in place and back', async () => {
  const page = await openPage();
  await show(page, join(samples, 'hostile.eml'));
  assert.match(await page.locator('#context').innerText(), /From the mail “Figures” from Ann Smith <ann@example.com>/);
  assert.equal(await page.locator('#summary dd[data-field="subject"]').innerText(), 'Figures <b>bold</b> & more');

  // The embedded message against the tool's listing of it.
  const inner = run(['list', '--json', join(samples, 'hostile.tnef')]).subfiles[2].nested;
  await page.click('#attachments tr[data-index="2"] button:text-is("Open")');
  await page.waitForSelector('#trail:not([hidden])');
  assert.equal(await page.locator('#summary dd[data-field="subject"]').innerText(), inner.summary.subject);
  assert.deepEqual(await page.$$eval('#attachments tbody tr', (trs) => trs.map((tr) => tr.dataset.name)),
    inner.subfiles.slice(1).map((s) => s.name));
  await page.click('#back');
  assert.equal(await page.locator('#summary dd[data-field="subject"]').innerText(), 'Figures <b>bold</b> & more');

  // The second TNEF part, found by its name and signature.
  await page.click('button:text-matches("^Open part 2: win.dat")');
  await page.waitForFunction(() => document.querySelector('#summary dd[data-field="subject"]')?.textContent === 'Inner note');
  await page.close();
});

test('on a phone-sized screen in the dark scheme, nothing scrolls sideways', async () => {
  const page = await openPage({ viewport: { width: 360, height: 740 }, colorScheme: 'dark' });
  await page.keyboard.press('Tab');
  assert.equal(await page.evaluate(() => document.activeElement.id), 'choose');
  // Dropped on the page this time.
  const bytes = [...readFileSync(join(samples, 'hostile.tnef'))];
  const dropped = await page.evaluateHandle((bytes) => {
    const transfer = new DataTransfer();
    transfer.items.add(new File([new Uint8Array(bytes)], 'hostile.tnef'));
    return transfer;
  }, bytes);
  await page.dispatchEvent('main', 'drop', { dataTransfer: dropped });
  await page.waitForFunction(() => document.getElementById('status').textContent === 'Showing hostile.tnef.');
  assert.equal(await page.evaluate(() => document.documentElement.scrollWidth <= window.innerWidth), true);
  assert.equal(await page.evaluate(() => getComputedStyle(document.body).backgroundColor), 'rgb(23, 23, 26)');
  await page.screenshot({ path: join(root, 'build-web/viewer-phone-dark.png'), fullPage: true });
  await page.close();
});

test('the page made no request after it loaded', () => {
  assert.deepEqual(requests, []);
});
