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

const root = resolve(dirname(fileURLToPath(import.meta.url)), '../..');
const buildDir = resolve(root, process.env.TNEF_BUILD || 'build');
const corpus = resolve(root, process.env.TNEF_CORPUS || '../shared/corpus');
const pagePath = join(root, 'build-web/tnef-viewer.html');
const samples = join(root, 'build-web/samples');
const tool = join(buildDir, 'cli/tnef-reader');

// Chromium as the machine has it, with nothing running in the background
// that could reach the network on its own.
export const CHROMIUM_ARGS = ['--headless', '--no-sandbox', '--disable-gpu', '--disable-quic',
  '--no-first-run', '--disable-background-networking', '--disable-component-update', '--disable-sync'];

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

async function openPage(options = {}) {
  const page = await context.newPage(options);
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
  // Playwright gives every launch a fresh profile of its own.
  browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: CHROMIUM_ARGS });
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
    for (const written of extracted.written.filter((w) => w.path && w.index !== message)) {
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
