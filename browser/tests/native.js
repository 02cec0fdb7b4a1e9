// What the native program says of a page: pictures and logs of `kpg shot`, to hold the player against.
import {execFileSync} from 'node:child_process';
import {copyFileSync, mkdtempSync, readFileSync, readdirSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {fileURLToPath} from 'node:url';
import {PNG} from 'pngjs';

export const top = fileURLToPath(new URL('../..', import.meta.url)).replace(/\/$/, '');
const build = process.env.VISTREL_BUILD ?? join(top, 'build/dev');  // the folder of the native build
export const demo = join(build, 'demo');
export const viewer = join(top, 'build/web/viewer');
export const kpg = join(build, 'src/kpg/kpg');

export function run(...words) {
  return execFileSync(kpg, words, {encoding: 'latin1', maxBuffer: 1 << 28});
}

/** The picture of a page after these actions (--key and its like), as bytes R G B A, and the console's text. */
export function shot(page, ...actions) {
  const folder = mkdtempSync(join(tmpdir(), 'vistrel-'));
  const picture = join(folder, 'shot.png');
  const log = join(folder, 'log.txt');
  run('shot', page, '-o', picture, '--log', log, ...actions);
  return {pixels: PNG.sync.read(readFileSync(picture)).data, log: readFileSync(log, 'latin1')};
}

/** The pictures of a page of the demo when it has just been opened: a slow machine may show it a second later. */
export function firstPictures(name) {
  const page = join(demo, `${name}.kpg`);
  return [shot(page).pixels, shot(page, '--wait', '1000').pixels];
}

/** The demo's pages by their full names. */
export const demoPages = ['guide', 'settings', 'tour', 'panel', 'game', 'gallery'].map((name) => join(demo, `${name}.kpg`));

/** The pages of the guide's pictures, compiled. */
export function guidePages() {
  const folder = mkdtempSync(join(tmpdir(), 'vistrel-'));
  const sources = join(top, 'docs/pictures');
  const artwork = join(top, 'demo/artwork');
  for (const file of readdirSync(demo)) if (file.endsWith('.ttf')) copyFileSync(join(demo, file), join(folder, file));
  run('image', join(artwork, 'dawn.png'), '-o', join(folder, 'plain.kpx'), '--colors', '14');
  run('image', join(artwork, 'dunes.png'), '-o', join(folder, 'dunes.kpx'));
  run('clut', '--standard', '-o', join(folder, 'standard.clut'));
  const names = readdirSync(sources).filter((name) => name.endsWith('.yaml'));
  return names.map((name) => {
    const page = join(folder, name.replace('.yaml', '.kpg'));
    run('build', join(sources, name), '-o', page);
    return page;
  });
}
