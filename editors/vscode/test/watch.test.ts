// The preview's picture comes after each save and each key, and what is wrong is said.
import * as assert from 'node:assert';
import { mkdtempSync, renameSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { test } from 'node:test';
import { keyNames } from '../src/panelhtml';
import { Watch } from '../src/watch';

const page = (color: string) => `flags: 16bit
page:
  {type: group, width: 720, height: 480, bgColor: "${color}", start: a,
   children: [{name: a, down: b, width: 40, height: 40}, {name: b, x: 90, width: 40, height: 40, highlightFrame: true}]}
`;

test('a preview', { skip: !process.env.KPG }, async () => {
  const folder = mkdtempSync(join(tmpdir(), 'vistrel-test-'));
  const source = join(folder, 'page.yaml');
  const save = (text: string) => {
    writeFileSync(source + '~', text);
    renameSync(source + '~', source);
  };
  save(page('#000000'));
  const pictures: string[] = [];
  const messages: string[] = [];
  let heard = () => {};
  const until = async (what: () => boolean) => {
    while (!what()) await new Promise<void>((resolve) => (heard = resolve));
  };
  const watch = new Watch(process.env.KPG!, source, {
    picture: (png) => (pictures.push(png.toString('base64')), heard()),
    message: (text) => (messages.push(text), heard()),
  });
  await until(() => pictures.length === 1);
  watch.key(keyNames.ArrowDown);
  await until(() => pictures.length === 2);
  assert.notStrictEqual(pictures[1], pictures[0], 'the frame of the focus');
  save(page('#C04040'));
  await until(() => pictures.length >= 3);
  save(page('#C0'));
  await until(() => messages.some((text) => text.includes('#C0')));
  save(page('#000000'));
  await until(() => pictures[pictures.length - 1] === pictures[1]);
  watch.reset();
  await until(() => pictures[pictures.length - 1] === pictures[0]);
  watch.close();
  rmSync(folder, { recursive: true });
});
