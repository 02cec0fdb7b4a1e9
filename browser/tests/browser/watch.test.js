// kpg watch --serve: the page in a browser, and again after each save.
import assert from 'node:assert/strict';
import {spawn} from 'node:child_process';
import {once} from 'node:events';
import {copyFileSync, mkdtempSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {createInterface} from 'node:readline';
import {after, before, test} from 'node:test';
import {demo, kpg, run, shot, viewer} from '../native.js';
import {openBrowser, openPage, showsSoon} from './browser.js';

const SOURCE = (color) => `flags: 16bit
page:
  type: group
  width: 720
  height: 480
  bgColor: "${color}"
  start: one
  textStyles: [{name: body, font: DejaVuSans.ttf, size: 24, color: white}]
  children:
    - {type: select, name: one, x: 60, y: 60, width: 300, height: 40, textStyle: body, highlightFrame: true,
       frameColor: "#F0F000", frameWidth: 4, choices: "|One|Two", down: two}
    - {type: select, name: two, x: 60, y: 160, width: 300, height: 40, textStyle: body, highlightFrame: true,
       frameColor: "#F0F000", frameWidth: 4, choices: "|One|Two", up: one}
`;

let browser, watch, folder, address;

before(async () => {
  folder = mkdtempSync(join(tmpdir(), 'vistrel-'));
  copyFileSync(join(demo, 'DejaVuSans.ttf'), join(folder, 'DejaVuSans.ttf'));
  writeFileSync(join(folder, 'page.yaml'), SOURCE('#000080'));
  watch = spawn(kpg, ['watch', 'page.yaml', '--serve', '--viewer', viewer], {cwd: folder, stdio: ['ignore', 'pipe', 'inherit']});
  [address] = await once(createInterface(watch.stdout), 'line');
  browser = await openBrowser();
});

after(async () => {
  await browser?.close();
  watch?.kill('SIGINT');
});

function shotOf(source, ...actions) {
  writeFileSync(join(folder, 'other.yaml'), source);
  run('build', join(folder, 'other.yaml'), '-o', join(folder, 'other.kpg'));
  return shot(join(folder, 'other.kpg'), ...actions).pixels;
}

test('a page that is saved shows at once, with the keys that were pressed', async () => {
  const {page, faults} = await openPage(browser);
  await page.goto(address);
  assert.ok(await showsSoon(page, shotOf(SOURCE('#000080'))));
  await page.locator('canvas').focus();
  await page.keyboard.press('ArrowDown');
  assert.notDeepEqual(shotOf(SOURCE('#000080')), shotOf(SOURCE('#000080'), '--key', 'Down'));
  assert.ok(await showsSoon(page, shotOf(SOURCE('#000080'), '--key', 'Down')));
  writeFileSync(join(folder, 'page.yaml'), SOURCE('#008000'));
  assert.ok(await showsSoon(page, shotOf(SOURCE('#008000'), '--key', 'Down')));
  writeFileSync(join(folder, 'page.yaml'), SOURCE('#008000').replace('select', 'selcet'));
  await page.getByRole('status').getByText('selcet').first().waitFor();
  assert.ok(await showsSoon(page, shotOf(SOURCE('#008000'), '--key', 'Down')), 'the page before stays');
  assert.deepEqual(faults, []);
});
