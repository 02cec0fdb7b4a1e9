// What the modules cost, in node: npm run bench. Of the player its size, the time from its start to the first page, and that
// of a key on the programme guide; of the kit the time from a change of the guide's source to its pixels.
import {unzipSync} from 'fflate';
import {readFileSync} from 'node:fs';
import {gzipSync} from 'node:zlib';
import {startBuiltWorkshop} from './builtworkshop.js';
import {FONTS} from './guideproject.js';
import {asked} from './playground/workshop.js';
import {demoPages} from './tests/native.js';
import {SteppedPlayer, wasmBinary} from './tests/steppedplayer.js';

const KEYS = ['Down', 'Down', 'Right', 'Up', 'Left', 'Down', 'Up', 'Up'];
const ROUNDS = 100;
const guide = demoPages[0];

const median = (values) => values.sort((a, b) => a - b)[values.length >> 1];
const inMilliseconds = (work) => {
  const begun = performance.now();
  work();
  return performance.now() - begun;
};

console.log(`vistrel-player.wasm        ${(wasmBinary.length / 1024).toFixed(0)} KB, ${(gzipSync(wasmBinary, {level: 9}).length / 1024).toFixed(0)} KB compressed`);

const firsts = [];
for (let round = 0; round < 9; ++round) {
  const begun = performance.now();
  const stepped = await SteppedPlayer.open(guide);
  stepped.pixels();
  firsts.push(performance.now() - begun);
}
console.log(`start and first page       ${firsts[0].toFixed(0)} ms the first time, ${median(firsts.slice(1)).toFixed(0)} ms after that`);

const stepped = await SteppedPlayer.open(guide);
const keys = [];
for (let round = 0; round < ROUNDS; ++round)
  for (const key of KEYS) keys.push(inMilliseconds(() => (stepped.act('--key', key), stepped.player.frame())));
console.log(`a key on the guide         ${median(keys.slice(keys.length / 2)).toFixed(2)} ms at the median, with its pixels`);

const workshop = await startBuiltWorkshop();
function put(path, bytes) {
  workshop.FS.mkdirTree(path.slice(0, path.lastIndexOf('/')));
  workshop.FS.writeFile(path, bytes);
}
const demo = unzipSync(readFileSync(new URL('../build/web/playground/gallery/demo.zip', import.meta.url)));
for (const [name, bytes] of Object.entries(demo)) put(`/project/${name}`, bytes);
for (const [name, bytes] of Object.entries(FONTS)) put(`/usr/share/fonts/truetype/dejavu/${name}`, bytes);
const source = new TextDecoder().decode(demo['guide.yaml']);
if (!asked(workshop, '_stageOpen', '/project/guide.yaml').opened) throw new Error('the guide is not opened');
const changes = [];
for (let i = 0; i < 60; ++i) {
  put('/project/guide.yaml', new TextEncoder().encode(source.replace('#142434', `#1424${10 + i}`)));
  changes.push(inMilliseconds(() => (asked(workshop, '_stageReload'), workshop._stagePass(0), workshop._stageFrame())));
}
console.log(`a change of the guide      ${median(changes).toFixed(0)} ms at the median, until its pixels`);
