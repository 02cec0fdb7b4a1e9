// A player in node whose clock moves only when it is told to, as that of `kpg shot` does.
import assert from 'node:assert/strict';
import {existsSync, readFileSync, statSync} from 'node:fs';
import {join} from 'node:path';
import {Player, SCREEN_HEIGHT, SCREEN_WIDTH} from '../viewer/player.js';
import {viewer} from './native.js';

export const {default: startModule} = await import(join(viewer, 'vistrel-player.js'));
export const wasmBinary = readFileSync(join(viewer, 'vistrel-player.wasm'));

export const fromDisk = (path) => (existsSync(path) && statSync(path).isFile() ? readFileSync(path) : null);

export class SteppedPlayer {
  static async open(page, fetchFile = fromDisk) {
    const stepped = new SteppedPlayer();
    stepped.player = await Player.start(startModule, {wasmBinary, fetchFile});
    stepped.settle();
    assert.ok(stepped.player.open(page), `${page} doesn't load`);
    stepped.settle();
    return stepped;
  }

  now = 0;
  screen = new Uint8Array(SCREEN_WIDTH * SCREEN_HEIGHT * 4);
  log = '';

  settle() {
    this.player.run(this.now);
    this.log += this.player.log();
  }

  act(option, value) {
    if (option === '--key') assert.ok(this.player.key(value));
    if (option === '--eval') this.player.type(value);
    if (option === '--wait') {
      for (let left = Number(value); left > 0; --left) {
        ++this.now;
        this.settle();
      }
      return;
    }
    this.settle();
  }

  /** The whole screen, put together from what has changed. */
  pixels() {
    for (let frame; (frame = this.player.frame());)
      for (let row = 0; row < frame.h; ++row)
        this.screen.set(
            frame.pixels.subarray(row * frame.w * 4, (row + 1) * frame.w * 4),
            ((frame.y + row) * SCREEN_WIDTH + frame.x) * 4);
    return this.screen;
  }
}
