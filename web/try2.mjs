import { chromium } from 'playwright-core';
import { readFileSync } from 'node:fs';
const browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: ['--headless', '--no-sandbox', '--disable-gpu', '--disable-background-networking'] });
const page = await browser.newPage();
page.on('console', m => console.log('console:', m.text()));
page.on('pageerror', e => console.log('pageerror:', e.message));
await page.goto('file:///work/wt-web/build-web/tnef-viewer.html');
const bytes = [...readFileSync(process.argv[2])];
const out = await page.evaluate(async ([bytes, expr]) => {
  const reader = await window.tnefViewer.loadReader();
  const stream = reader.open(new Uint8Array(bytes), 'x');
  return eval(expr);
}, [bytes, process.argv[3]]);
console.log(JSON.stringify(out, null, 1).slice(0, 3000));
await browser.close();
