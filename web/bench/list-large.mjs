// How soon the viewer lists a large stream once the file is read: a 50 MiB
// winmail.dat (made by make-web-samples) is opened in headless Chromium
// several times, and the time from "file read" to "message shown" (the
// page's performance marks) is printed. A benchmark, not a test: it asserts
// nothing.
//
//   node web/bench/list-large.mjs [MIB] [RUNS]     (after scripts/web.sh and the native build)
import { spawnSync } from 'node:child_process';
import { mkdirSync } from 'node:fs';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';
import { chromium } from 'playwright-core';
import { CHROMIUM } from '../tests/chromium.mjs';

const root = resolve(dirname(fileURLToPath(import.meta.url)), '../..');
const buildDir = resolve(root, process.env.TNEF_BUILD || 'build');
const mib = Number(process.argv[2] || 50);
const runs = Number(process.argv[3] || 5);
const stream = join(root, `build-web/bench/large-${mib}mib.tnef`);

mkdirSync(dirname(stream), { recursive: true });
const made = spawnSync(join(buildDir, 'web/tests/samples/make-web-samples'), ['--big', String(mib), stream]);
if (made.status !== 0) throw new Error(`make-web-samples failed: ${made.stderr}`);

const browser = await chromium.launch(CHROMIUM);
const page = await browser.newPage();
await page.goto(`file://${join(root, 'build-web/tnef-viewer.html')}`);
const times = [];
for (let run = 0; run < runs; ++run) {
  await page.evaluate(() => performance.clearMarks());
  await page.setInputFiles('#file', stream);
  await page.waitForFunction(() => document.getElementById('status').textContent.startsWith('Showing'));
  const [read, listed, rows] = await page.evaluate(() => {
    const mark = (name) => performance.getEntriesByName(name)[0].startTime;
    return [mark('tnef-read') - mark('tnef-start'), mark('tnef-shown') - mark('tnef-read'),
      document.querySelectorAll('#attachments tbody tr').length];
  });
  times.push(listed);
  console.log(`run ${run + 1}: read ${read.toFixed(0)} ms, listed and shown ${listed.toFixed(1)} ms after (${rows} attachments)`);
  await page.evaluate(() => { document.getElementById('status').textContent = ''; });
}
times.sort((a, b) => a - b);
console.log(`${mib} MiB stream: listed and shown ${times[Math.floor(times.length / 2)].toFixed(1)} ms (median of ${runs}) ` +
  `after the file was read; best ${times[0].toFixed(1)} ms`);
await browser.close();
