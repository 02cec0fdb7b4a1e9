// The player as a module against the native one: pages, keys, time, the console.
import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import {join} from 'node:path';
import {test} from 'node:test';
import {KEYS, Player} from '../../viewer/player.js';
import {demo, demoPages, guidePages, shot} from '../native.js';
import {SteppedPlayer, fromDisk, startModule, wasmBinary} from '../steppedplayer.js';

async function assertLikeNative(page, actions) {
  const stepped = await SteppedPlayer.open(page);
  stepped.pixels();
  for (let i = 0; i < actions.length; i += 2) {
    stepped.act(actions[i], actions[i + 1]);
    if (i % 8 === 0) stepped.pixels();  // taken now and then, as a browser would
  }
  const native = shot(page, ...actions);
  assert.ok(Buffer.from(stepped.pixels()).equals(native.pixels), `${page}: other pixels than kpg shot`);
  assert.equal(stepped.log, native.log, `${page}: another log than kpg shot`);
}

// Equal numbers every time: a failure can be looked at again.
function randomNumbers(seed) {
  return (below) => {
    seed = (Math.imul(seed, 1664525) + 1013904223) >>> 0;
    return Math.floor((seed / 2 ** 32) * below);
  };
}

function randomActions(seed, count) {
  const below = randomNumbers(seed);
  const actions = [];
  for (let i = 0; i < count; ++i) {
    if (below(20) === 0) actions.push('--wait', String(1 + below(400)));
    actions.push('--key', KEYS[below(3) ? below(6) : below(KEYS.length)]);
  }
  return actions;
}

for (const page of demoPages)
  test(`${page.split('/').pop()} is as kpg shows it`, () => assertLikeNative(page, []));

test('200 random keys do the same on every page', async () => {
  const pages = [...demoPages, ...guidePages()];
  assert.ok(pages.length >= 20, 'too few pages');
  for (const [number, page] of pages.entries()) await assertLikeNative(page, randomActions(number + 1, 200));
});

test('the console runs what is typed', async () => {
  await assertLikeNative(demoPages[0], ['--eval', 'stdout.Display(1.5e300, 0x7fffffff, 1/3.0);', '--eval', 'nobody.Knows();']);
});

test('numbers are read and printed alike', async () => {
  const numbers = ['1e308', '1e309', '4.9e-324', '0.1', '123456.5', '1234567.0', '1e-5', '0x1.8p3', '.5', '1e', '100000.0'];
  const line = numbers.map((n) => `stdout.Display(Float("${n}"));`).join('');
  await assertLikeNative(demoPages[0], ['--eval', line, '--eval', 'stdout.Display(0.1 + 0.2, 1e21, 5e-324);']);
});

test('files in memory come first, in whatever case', async () => {
  const asked = [];
  const player = await Player.start(startModule, {wasmBinary, fetchFile: (path) => (asked.push(path), null)});
  player.run(0);
  player.put('/pages/gallery.kpg', readFileSync(demoPages[5]));
  player.put('/pages/GALLERY.clut', readFileSync(join(demo, 'gallery.clut')));
  assert.ok(player.open('/pages/gallery.kpg'));
  assert.ok(!player.open('/pages/other.kpg'));
  assert.match(player.log(), /other\.kpg/);
  assert.ok(asked.includes('/pages/other.kpg') && !asked.includes('/pages/gallery.kpg'));
  assert.equal(player.key('Fire'), false);
});

test('scripts open files unless they are kept from them', async () => {
  const player = await Player.start(startModule, {wasmBinary});
  player.put('/pages/notes.txt', new TextEncoder().encode('secret'));
  player.open('/pages/none.kpg');  // which makes the folder the page's
  const read = () => {
    player.type('new File("/pages/notes.txt", "r").GetC();');
    player.run(0);
    return player.log();
  };
  assert.match(read(), /--> 115/);
  player.keepFilesFromScripts();
  assert.match(read(), /'\/pages\/notes.txt' is not opened: scripts may open no files/);
});

test('the next call is due when a timer is', async () => {
  const player = await Player.start(startModule, {wasmBinary, fetchFile: fromDisk});
  player.run(0);
  player.open(demoPages[5]);
  assert.equal(player.run(0), -1);
  player.open(demoPages[0]);  // has a clock
  const next = player.run(0);
  assert.ok(next > 0 && next <= 60_000, `due in ${next} ms`);
});
