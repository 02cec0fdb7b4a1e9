// <vistrel-screen> in a browser: the demo's pages as kpg shows them, keys, the remote control, the console.
import assert from 'node:assert/strict';
import {mkdtempSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {after, before, test} from 'node:test';
import {addressOf, serve} from '../../serve.js';
import {demo, firstPictures, shot, viewer} from '../native.js';
import {hasShown, openBrowser, openPage, rememberPictures, showsSoon} from './browser.js';

let browser, server, address;

before(async () => {
  const pages = mkdtempSync(join(tmpdir(), 'vistrel-'));
  writeFileSync(join(pages, 'index.html'), `<!doctype html><html lang="en"><title>A page</title>
    <script type="module" src="/viewer/vistrel-screen.js"></script>
    <main><h1>A page</h1><vistrel-screen remote></vistrel-screen></main></html>`);
  server = await serve({'/': pages, '/viewer/': viewer, '/demo/': demo});
  address = addressOf(server);
  browser = await openBrowser();
});

after(async () => {
  await browser?.close();
  server?.close();
});

async function open(name) {
  const opened = await openPage(browser);
  await opened.page.goto(address);
  await rememberPictures(opened.page);
  await opened.page.evaluate((src) => {
    const screen = document.querySelector('vistrel-screen');
    window.console_ = '';
    screen.addEventListener('console', ({detail}) => (window.console_ += detail));
    screen.src = src;
  }, `demo/${name}.kpg`);
  return opened;
}

for (const name of ['guide', 'settings', 'tour', 'panel', 'game', 'gallery'])
  test(`${name} shows as kpg shows it`, async () => {
    const {page, faults, context} = await open(name);
    await hasShown(page, firstPictures(name));
    assert.deepEqual(faults, []);
    await context.close();
  });

test('the keyboard is the remote control, and Tab leads to its buttons', async () => {
  const {page, faults, context} = await open('settings');
  const file = join(demo, 'settings.kpg');
  assert.ok(await showsSoon(page, shot(file).pixels));
  await page.keyboard.press('Tab');
  await page.keyboard.press('ArrowDown');
  await page.keyboard.press('l');  // of the pad: right
  assert.ok(await showsSoon(page, shot(file, '--key', 'Down', '--key', 'Right').pixels), 'keys');
  await page.getByRole('button', {name: 'Down', exact: true}).click();
  const three = ['--key', 'Down', '--key', 'Right', '--key', 'Down'];
  assert.ok(await showsSoon(page, shot(file, ...three).pixels), 'a button');
  await page.getByRole('button', {name: 'Up', exact: true}).focus();
  await page.keyboard.press('Enter');
  assert.ok(await showsSoon(page, shot(file, ...three, '--key', 'Up').pixels), 'a button by the keyboard');
  assert.deepEqual(faults, []);
  await context.close();
});

test('the console tells, and runs what is typed', async () => {
  const {page, context} = await open('gallery');
  await page.waitForFunction(() => window.console_.includes('dawn'));
  await page.evaluate(() => document.querySelector('vistrel-screen').type('stdout.Display(6 * 7);'));
  await page.waitForFunction(() => window.console_.includes('42'));
  await context.close();
});

test('a page that is not there, and one of another server, are said to be so', async () => {
  const {page, context} = await open('nothing');
  await page.getByRole('status').getByText("/demo/nothing.kpg can't be shown").waitFor();
  await page.evaluate(() => (document.querySelector('vistrel-screen').src = 'https://example.org/a.kpg'));
  await page.getByRole('status').getByText('on another server').waitFor();
  await context.close();
});
