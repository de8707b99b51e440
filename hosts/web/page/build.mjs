// Puts the page together: one file with the engine, the program and the style inside.
//   node build.mjs ENGINE_SCRIPT LICENCES OUTPUT
import { build } from 'esbuild';
import { execFileSync } from 'node:child_process';
import { readFile, readdir, writeFile } from 'node:fs/promises';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const [engineScript, licences, output] = process.argv.slice(2);
if (output === undefined) throw new Error('node build.mjs ENGINE_SCRIPT LICENCES OUTPUT');

/** One file of ours with all it imports, as text. */
async function bundled(path) {
    const made = await build({
        entryPoints: [join(here, path)],
        bundle: true,
        minify: true,
        write: false,
        format: 'iife',
        target: 'es2022',
        jsx: 'automatic',
        jsxImportSource: 'preact',
        legalComments: 'inline',
    });
    return made.outputFiles[0].text;
}

/** Text for a script element, which ends at the first closing tag in it. */
const inScript = (text) => text.replaceAll('</script', '<\\/script').replaceAll('<!--', '<\\!--');

/** A file packed in gzip's form as small as it gets. */
const smallest = (path) => execFileSync('libdeflate-gzip', ['-12', '-c', path], { maxBuffer: 1 << 26 });

const samples = {};
for (const name of (await readdir(join(here, 'samples'))).sort()) {
    samples[name] = (await readFile(join(here, 'samples', name))).toString('base64');
}

const parts = {
    STYLE: await bundled('src/style.css'),
    PROGRAM: inScript(await bundled('src/main.tsx')),
    ENGINE: inScript((await readFile(engineScript, 'utf8')) + (await bundled('src/engine/worker.ts'))),
    MODULE: smallest(engineScript.replace(/\.js$/, '.wasm')).toString('base64'),
    LICENCES: inScript(await readFile(licences, 'utf8')),
    SAMPLES: JSON.stringify(samples),
};
const template = await readFile(join(here, 'src/index.html'), 'utf8');
await writeFile(
    output,
    template.replace(/\/\*@(\w+)@\*\//g, (_, name) => parts[name]),
);
