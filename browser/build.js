// Makes the playground in build/web/playground: one folder of files for any web server.
import {build} from 'esbuild';
import {zipSync} from 'fflate';
import {createHash} from 'node:crypto';
import {cpSync, mkdirSync, readdirSync, readFileSync, rmSync, statSync, writeFileSync} from 'node:fs';
import {join, relative, resolve} from 'node:path';
import {fileURLToPath} from 'node:url';
import {makeGuide} from './guide.js';
import {FONTS, guideProject} from './guideproject.js';

const here = fileURLToPath(new URL('.', import.meta.url));
const top = resolve(here, '..');
const out = join(top, 'build/web/playground');

const filesIn = (folder) => readdirSync(folder).flatMap((name) => {
  const file = join(folder, name);
  return statSync(file).isDirectory() ? filesIn(file) : [file];
});
const copy = (from, ...to) => cpSync(from, join(out, ...to));

rmSync(out, {recursive: true, force: true});
mkdirSync(join(out, 'gallery'), {recursive: true});
mkdirSync(join(out, 'fonts'));

await build({
  entryPoints: [join(here, 'playground/src/main.js')],
  outfile: join(out, 'app.js'),
  bundle: true, format: 'esm', minify: true, target: 'es2022', legalComments: 'none', logLevel: 'warning',
});
for (const name of ['index.html', 'app.css', 'manifest.webmanifest', 'workshop.js', 'workshopworker.js']) copy(join(here, 'playground', name), name);
copy(join(top, 'packaging/vistrel.svg'), 'vistrel.svg');
for (const name of ['vistrel-workshop.js', 'vistrel-workshop.wasm']) copy(join(top, 'build/web/workshop', name), name);
for (const name of Object.keys(FONTS)) writeFileSync(join(out, 'fonts', name), FONTS[name]);

// ---- what somebody can start from

const archive = (name, files) => writeFileSync(join(out, 'gallery', name), zipSync(files, {mtime: new Date(1980, 1, 1)}));
const bytes = (text) => new TextEncoder().encode(text);

const demo = join(top, 'demo');
const ofDemo = filesIn(demo).map((file) => relative(demo, file)).filter((name) => /\.(yaml|bob|png)$/.test(name) && !name.startsWith('tests/'));
archive('demo.zip', Object.fromEntries(ofDemo.map((name) => [name, readFileSync(join(demo, name))])));

archive('widgets.zip', guideProject());

archive('empty.zip', {
  'hello.yaml': bytes('# The first page. What is wrong with it shows below while you type, and Ctrl+Space tells what fits.\nflags: 16bit\npage:\n  type: group\n  width: 720\n  height: 480\n  bgColor: "#204060"\n  textStyles:\n    - {name: title, font: DejaVuSans.ttf, size: 40, color: white}\n  children:\n    - {type: text, x: 60, y: 200, width: 600, height: 80, textStyle: title, align: center, value: Hello}\n'),
  'vistrel.yaml': bytes('pages: [hello.yaml]\nfonts: [DejaVu Sans]\n'),
});
writeFileSync(join(out, 'gallery/gallery.json'), JSON.stringify([
  {title: 'Programme guide', about: 'The demo: a guide with settings, a tour, a panel, a game and a gallery', archive: 'gallery/demo.zip'},
  {title: 'Widgets', about: 'The pages of the guide’s pictures: texts, lists, sliders, layouts and more', archive: 'gallery/widgets.zip'},
  {title: 'Empty project', about: 'One page that says hello', archive: 'gallery/empty.zip'},
], null, 1));

// ---- for when there is no network

const kept = filesIn(out).map((file) => relative(out, file)).sort();
const hash = createHash('sha256');
for (const name of kept) hash.update(name).update(readFileSync(join(out, name)));
const worker = readFileSync(join(here, 'playground/sw.js'), 'utf8')
    .replace('@VERSION@', `vistrel-${hash.digest('hex').slice(0, 16)}`)
    .replace("['@FILES@']", JSON.stringify(['./', ...kept]));
writeFileSync(join(out, 'sw.js'), worker);

// ---- the guide, which is read where there is a network

await makeGuide(join(out, 'guide'));
