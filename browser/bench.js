// What the player's module costs, in node: npm run bench. Its size, the time from its start to the first page, and that of a
// key on the programme guide.
import {gzipSync} from 'node:zlib';
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
