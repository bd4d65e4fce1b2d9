// Bundles the viewer into one self-contained page:
//
//   node build.mjs MODULE_DIR OUTPUT.html
//
// MODULE_DIR holds emcc's tnef-module.js and tnef-module.wasm. The script,
// the style and the WebAssembly (as base64) all go inline: the page needs
// no other file and loads nothing.
import { readFileSync, writeFileSync } from 'node:fs';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';
import * as esbuild from 'esbuild';

const here = dirname(fileURLToPath(import.meta.url));
const [moduleArg, output] = process.argv.slice(2);
const moduleDir = moduleArg && resolve(moduleArg);
if (!moduleArg || !output) {
  console.error('usage: node build.mjs MODULE_DIR OUTPUT.html');
  process.exit(1);
}

// "tnef-module" is emcc's glue; "tnef-wasm" the program as base64 text.
const wasmPlugin = {
  name: 'tnef-wasm',
  setup(build) {
    build.onResolve({ filter: /^tnef-module$/ }, () => ({ path: join(moduleDir, 'tnef-module.js') }));
    build.onResolve({ filter: /^tnef-wasm$/ }, () => ({ path: 'tnef-wasm', namespace: 'tnef-wasm' }));
    build.onLoad({ filter: /.*/, namespace: 'tnef-wasm' }, () => ({
      contents: `export default ${JSON.stringify(readFileSync(join(moduleDir, 'tnef-module.wasm')).toString('base64'))};`,
      loader: 'js',
    }));
  },
};

const script = await esbuild.build({
  entryPoints: [join(here, 'src/main.js')],
  bundle: true,
  minify: true,
  format: 'iife',
  target: ['chrome97', 'firefox102', 'safari16'],
  legalComments: 'none',
  write: false,
  plugins: [wasmPlugin],
});
const style = await esbuild.transform(readFileSync(join(here, 'src/style.css'), 'utf8'), {
  loader: 'css',
  minify: true,
});

const js = script.outputFiles[0].text;
if (/<\/script/i.test(js) || /<!--/.test(js)) {
  console.error('build.mjs: the script holds text that would end an inline <script>');
  process.exit(1);
}
const page = readFileSync(join(here, 'src/index.html'), 'utf8')
  .replace('<!-- style -->', () => `<style>${style.code}</style>`)
  .replace('<!-- script -->', () => `<script>${js}</script>`);
writeFileSync(output, page);
console.log(`${output}: ${page.length} bytes`);
