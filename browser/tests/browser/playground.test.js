// The playground in a browser: the demo as kpg shows it, edit and see, what comes in and goes out, no network.
import assert from 'node:assert/strict';
import {unzipSync, zipSync} from 'fflate';
import {cpSync, mkdirSync, mkdtempSync, readFileSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {after, before, test} from 'node:test';
import {addressOf, serve} from '../../serve.js';
import {demo, firstPictures, run, shot, top} from '../native.js';
import {assertAccessible, assertFits, hasShown, openBrowser, openPage, pixelsOf, rememberPictures, showsSoon} from './browser.js';

const playground = join(top, 'build/web/playground');
const PAGE = (color) => `flags: 16bit\npage: {type: group, width: 720, height: 480, bgColor: "${color}"}\n`;
let browser, server, address;

before(async () => {
  server = await serve({'/': playground});
  address = addressOf(server);
  browser = await openBrowser();
});

after(async () => {
  await browser?.close();
  server?.close();
});

const made = (page) => page.waitForFunction(() => Number(document.body.dataset.made) > 0);

async function open(where = '', options = {}) {
  const opened = await openPage(browser, options);
  await opened.page.goto(address + where);
  await made(opened.page);
  return opened;
}

/** What kpg shows of a source. */
function shotOf(source) {
  const folder = mkdtempSync(join(tmpdir(), 'vistrel-'));
  writeFileSync(join(folder, 'page.yaml'), source);
  run('build', join(folder, 'page.yaml'), '-o', join(folder, 'page.kpg'));
  return shot(join(folder, 'page.kpg')).pixels;
}

async function chooseArchive(page, files, name = 'mine.zip') {
  await page.getByRole('button', {name: 'Open…'}).click();
  await page.locator('#open-files').setInputFiles({name, mimeType: 'application/zip', buffer: Buffer.from(zipSync(files))});
  await page.getByText(`${name.replace('.zip', '')}: ${Object.keys(files).length} file`).waitFor();
}

const bytes = (text) => new TextEncoder().encode(text);

/** That the screen and the select key of its remote control can be seen together. */
async function assertCanBePlayed(page) {
  const picture = await page.locator('#screen').evaluate((e) => (e.scrollIntoView({block: 'start'}), e.shadowRoot.querySelector('canvas').getBoundingClientRect().toJSON()));
  const select = await page.getByRole('button', {name: 'OK, select'}).boundingBox();
  const {height} = page.viewportSize();
  assert.ok(picture.top >= 0 && picture.bottom <= height && select.y >= 0 && select.y + select.height <= height);
}

async function typeSource(page, text) {
  await page.locator('.cm-content').click();
  await page.keyboard.press('Control+a');
  await page.keyboard.insertText(text);
}

test('the demo, made in the browser, shows as kpg shows it', async () => {
  const {page, faults, context} = await open();
  await rememberPictures(page);
  for (const name of ['settings', 'tour', 'panel', 'game', 'gallery', 'guide']) {
    await page.getByLabel('Page', {exact: true}).selectOption(`${name}.yaml`);
    await hasShown(page, firstPictures(name));
  }
  assert.deepEqual(faults, []);
  await context.close();
});

test('what is written shows, keys are kept, and errors say where they are', async () => {
  const {page, faults, context} = await open();
  await chooseArchive(page, {'page.yaml': bytes(PAGE('#000000'))});
  assert.ok(await showsSoon(page, shotOf(PAGE('#000000'))));
  await typeSource(page, PAGE('#FF8000'));
  assert.ok(await showsSoon(page, shotOf(PAGE('#FF8000'))));
  await typeSource(page, PAGE('#FF8000').replace('group', 'gruop'));
  await page.locator('#problem-list').getByText('gruop').first().waitFor();
  assert.ok(await showsSoon(page, shotOf(PAGE('#FF8000'))), 'the page before stays');
  await page.locator('#problem-list button').first().click();
  await typeSource(page, PAGE('#FFFFFF'));
  assert.ok(await showsSoon(page, shotOf(PAGE('#FFFFFF'))));
  await page.waitForFunction(() => document.querySelectorAll('#problem-list .error').length === 0);
  await page.reload();
  assert.ok(await showsSoon(page, shotOf(PAGE('#FFFFFF'))), 'it is kept');
  assert.deepEqual(faults, []);
  await context.close();
});

test('keys and help come from the language server', async () => {
  const {page, context} = await open();
  await chooseArchive(page, {'page.yaml': bytes(PAGE('#000000'))});
  await typeSource(page, 'flags: 16bit\npage:\n  bgCo');
  await page.keyboard.press('Control+Space');
  await page.locator('.cm-tooltip-autocomplete').getByText('bgColor').first().waitFor();
  await page.waitForTimeout(100);  // a key right after the list has come is meant for the text
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => document.querySelector('.cm-content').innerText.includes('bgColor'));
  await context.close();
});

test('the console runs scripts, and one that does not end is ended', async () => {
  const {page, context} = await open();
  await page.getByLabel('Script').fill('stdout.Display(6 * 7);');
  await page.keyboard.press('Enter');
  await page.locator('#console').getByText('42').waitFor();
  await page.getByLabel('Script').fill('while (true) {}');
  await page.keyboard.press('Enter');
  await page.locator('#notice').getByText('stopped').waitFor();
  await page.getByLabel('Script').fill('stdout.Display(600 + 7);');
  await page.keyboard.press('Enter');
  await page.locator('#console').getByText('607').waitFor();
  await context.close();
});

test('what happened on the page is listed, and can be filtered', async () => {
  const {page, context} = await open();
  await chooseArchive(page, {'page.yaml': bytes('flags: 16bit\npage: {type: group, width: 720, height: 480, onLoad: "stdout.Display(40 + 2);"}\n')});
  await page.getByText('What happened').click();
  const rows = page.locator('#timeline-rows tr');
  await rows.filter({hasText: /page\.(yaml|kpg)/}).first().waitFor();
  await rows.filter({hasText: '345,600 pixels filled'}).first().waitFor();
  await page.getByLabel('Filter').fill('onload');
  await page.waitForFunction(() => {
    const shown = [...document.querySelectorAll('#timeline-rows tr')];
    return shown.length === 1 && shown[0].innerText.includes('onLoad of the screen');
  });
  await context.close();
});

test('the widgets are listed with their attributes, and the map of the focus lies over the screen', async () => {
  const {page, context} = await open();
  await page.getByText('Widgets and focus').click();
  await page.locator('#widgets button').filter({hasText: 'list0'}).filter({hasText: 'has the focus'}).waitFor();
  assert.equal(await page.locator('#marks *').count(), 0);
  await page.getByLabel('where the keys lead').check();
  await page.locator('#marks path.reached').first().waitFor({state: 'attached'});
  await page.locator('#widgets button').filter({hasText: 'channel'}).click();
  await page.locator('#marks rect.chosen').waitFor({state: 'attached'});
  const row = page.locator('#attribute-rows tr').filter({hasText: 'choices'});
  assert.match(await row.innerText(), /1 Harbour/);
  await row.getByRole('button').click();
  assert.match(await page.locator('.cm-activeLine').innerText(), /choices: "\|1 Harbour/);
  await page.getByText('Widgets and focus').click();
  await page.waitForFunction(() => document.querySelectorAll('#marks *').length === 0);
  await context.close();
});

/** Drops files or folders of the disk on the page, as a file manager does. */
async function drop(page, files) {
  const devtools = await page.context().newCDPSession(page);
  const data = {items: [], files, dragOperationsMask: 1};
  const send = (type) => devtools.send('Input.dispatchDragEvent', {type, x: 300, y: 300, data});
  await send('dragEnter');
  while (await page.locator('#drop').isHidden()) await send('dragOver');
  await send('drop');
}

test('a folder comes in by its input, and by being dropped', async () => {
  const folder = join(mkdtempSync(join(tmpdir(), 'vistrel-')), 'größe');
  mkdirSync(join(folder, 'pages'), {recursive: true});
  writeFileSync(join(folder, 'pages/one.yaml'), PAGE('#00FF00'));
  const {page, faults, context} = await open();
  await page.locator('#open-folder').setInputFiles(folder);
  assert.ok(await showsSoon(page, shotOf(PAGE('#00FF00'))));
  writeFileSync(join(folder, 'pages/one.yaml'), PAGE('#0000FF'));
  await drop(page, [folder]);
  assert.ok(await showsSoon(page, shotOf(PAGE('#0000FF'))));
  assert.deepEqual(faults, []);
  await context.close();
});

test('files are added to a project, and a compiled page shows', async () => {
  const {page, context} = await open();
  await chooseArchive(page, {'page.yaml': bytes(PAGE('#000000'))});
  await page.getByRole('button', {name: 'Open…'}).click();
  await page.locator('#add-files').setInputFiles([join(demo, 'settings.kpg'), join(demo, 'DejaVuSans.ttf'), join(demo, 'DejaVuSans-Bold.ttf')]);
  await page.getByText('3 files added').waitFor();
  await page.getByLabel('Page', {exact: true}).selectOption('settings.kpg');
  assert.ok(await showsSoon(page, shot(join(demo, 'settings.kpg')).pixels));
  await context.close();
});

test('what somebody has changed can be had back after another project was opened', async () => {
  const {page, context} = await open();
  await chooseArchive(page, {'mine.yaml': bytes(PAGE('#000000'))});
  await typeSource(page, PAGE('#FF8000'));
  await page.getByRole('button', {name: 'Copy link'}).click();
  await page.waitForFunction(() => location.hash.startsWith('#p='));
  const link = page.url();
  await typeSource(page, PAGE('#FF8001'));
  await page.waitForFunction(() => location.hash === '', null, {timeout: 5000});  // which would bring the old state back
  await page.goto(link);
  assert.ok(await showsSoon(page, shotOf(PAGE('#FF8000'))));
  await page.getByRole('button', {name: /^Back to/}).click();
  assert.ok(await showsSoon(page, shotOf(PAGE('#FF8001'))));
  await page.getByRole('button', {name: 'New…'}).click();
  await page.getByRole('button', {name: /Empty project/}).click();
  await page.getByRole('button', {name: 'hello.yaml'}).waitFor();
  await page.reload();
  await made(page);
  await page.getByRole('button', {name: 'New…'}).click();
  await page.getByRole('button', {name: /^Back to/}).click();
  assert.ok(await showsSoon(page, shotOf(PAGE('#FF8001'))));
  await context.close();
});

test('a project goes out as an archive, and as what the player needs', async () => {
  const {page, context} = await open();
  const save = async (name) => {
    await page.getByRole('button', {name: 'Save…'}).click();
    const download = page.waitForEvent('download');
    await page.getByRole('button', {name}).click();
    return unzipSync(readFileSync(await (await download).path()));
  };
  const project = await save(/The project/);
  assert.deepEqual(Buffer.from(project['guide.bob']), readFileSync(join(top, 'demo/guide.bob')));
  const packed = await save(/For the player/);
  for (const name of ['guide.kpg', 'gallery.clut', 'dawn.kpx'])
    assert.ok(Buffer.from(packed[name] ?? '').equals(readFileSync(join(demo, name))), `${name} as kpg builds it`);
  await context.close();
});

test('a link holds the project', async () => {
  const {page, context} = await open();
  await chooseArchive(page, {'page.yaml': bytes(PAGE('#123456')), 'other.yaml': bytes(PAGE('#FFFF00'))});
  await page.getByLabel('Page', {exact: true}).selectOption('other.yaml');
  await page.getByRole('button', {name: 'Copy link'}).click();
  await page.waitForFunction(() => location.hash.startsWith('#p='));
  const link = page.url();
  await context.close();
  const other = await open(link.slice(address.length));
  assert.ok(await showsSoon(other.page, shotOf(PAGE('#FFFF00'))));
  await other.context.close();
  const broken = await open(link.slice(address.length, -20));
  await broken.page.locator('#notice').getByText("can't be read").waitFor();
  await broken.context.close();
});

test('files are added, renamed, removed and brought back', async () => {
  const {page, context} = await open();
  await chooseArchive(page, {'page.yaml': bytes(PAGE('#123456'))});
  await page.getByRole('button', {name: 'Add'}).click();
  await page.getByRole('textbox', {name: 'Name'}).fill('../bad');
  await page.keyboard.press('Enter');
  await page.getByRole('alert').getByText('can be in a name').waitFor();
  await page.getByRole('textbox', {name: 'Name'}).fill('second.yaml');
  await page.keyboard.press('Enter');
  await page.getByRole('button', {name: 'second.yaml'}).waitFor();
  await page.getByRole('button', {name: 'Rename'}).click();
  await page.getByRole('textbox', {name: 'Name'}).fill('third.yaml');
  await page.keyboard.press('Enter');
  await page.getByRole('button', {name: 'third.yaml'}).waitFor();
  await page.getByLabel('Page', {exact: true}).selectOption('third.yaml');
  await page.getByRole('button', {name: 'Rename'}).click();
  await page.getByRole('textbox', {name: 'Name'}).fill('größe.yaml');
  await page.keyboard.press('Enter');
  await typeSource(page, PAGE('#00FF80'));
  assert.ok(await showsSoon(page, shotOf(PAGE('#00FF80'))), 'a page that is shown keeps being shown by its new name');
  await page.getByRole('button', {name: 'Remove'}).click();
  await page.getByRole('button', {name: 'größe.yaml'}).waitFor({state: 'detached'});
  await page.getByRole('button', {name: 'Bring it back'}).click();
  await page.getByRole('button', {name: 'größe.yaml'}).waitFor();
  await context.close();
});

test('it works without a network', async () => {
  const {page, context} = await open();
  await page.evaluate(() => navigator.serviceWorker.ready);
  await page.reload();
  await made(page);
  await context.setOffline(true);
  await page.reload();
  await made(page);
  assert.equal((await pixelsOf(page)).length, 720 * 480 * 4);
  await context.close();
});

test('the keyboard alone leads everywhere', async () => {
  const {page, context} = await open();
  const goTo = async (what) => {
    for (let i = 0; i < 80; ++i) {
      await page.keyboard.press('Tab');
      if (await page.locator(what).evaluate((e) => e.matches(':focus'))) return;
    }
    assert.fail(`${what} is not reached`);
  };
  await goTo('#gallery-button');
  await page.keyboard.press('Enter');
  await page.getByRole('dialog').waitFor();
  await goTo('#gallery-list li:nth-child(3) button');
  await page.keyboard.press('Enter');
  await page.getByRole('button', {name: 'hello.yaml'}).waitFor();
  await goTo('.cm-content');
  await page.keyboard.press('Control+a');
  await page.keyboard.insertText(PAGE('#806040'));
  assert.ok(await showsSoon(page, shotOf(PAGE('#806040'))));
  await goTo('#screen');  // the editor lets go of it
  await goTo('#line input');
  await page.keyboard.type('stdout.Display(6 * 7);');
  await page.keyboard.press('Enter');
  await page.locator('#console').getByText('42').waitFor();
  await goTo('#inspector summary');
  await page.keyboard.press('Enter');
  await goTo('#widgets button');
  await page.keyboard.press('Enter');
  await page.locator('#attribute-rows tr').first().waitFor();
  await context.close();
});

test('a newer playground waits until it is asked for', async () => {
  const folder = mkdtempSync(join(tmpdir(), 'vistrel-'));
  cpSync(playground, folder, {recursive: true});
  const change = (name, from, to) => writeFileSync(join(folder, name), readFileSync(join(folder, name), 'utf8').replace(from, to));
  const served = await serve({'/': folder});
  const {page, context} = await openPage(browser);
  await page.goto(addressOf(served));
  await page.evaluate(() => navigator.serviceWorker.ready);
  await page.reload();
  await made(page);
  change('index.html', '<title>', '<title>A newer ');
  change('sw.js', /'vistrel-\w+'/, "'vistrel-newer'");
  await page.reload();
  await page.getByText('There is a newer playground').waitFor();
  assert.equal(await page.title(), 'Vistrel playground');
  await page.getByRole('button', {name: 'Use it'}).click();
  await page.waitForFunction(() => document.title === 'A newer Vistrel playground');
  await context.close();
  served.close();
});

const VIEWPORTS = {'a desktop': {width: 1400, height: 900}, 'a telephone': {width: 390, height: 844}, 'a telephone on its side': {width: 844, height: 390}};
for (const [title, viewport] of Object.entries(VIEWPORTS))
  test(`on ${title} everybody can use it`, async () => {
    const {page, context} = await open('', {viewport, bypassCSP: true});
    await assertAccessible(page);
    await assertCanBePlayed(page);
    await page.getByText('Widgets and focus').click();
    await page.getByText('What happened').click();
    await page.locator('#widgets button').filter({hasText: 'channel'}).click();
    await page.locator('#attribute-rows button').first().waitFor();
    await assertAccessible(page);
    if (viewport.width < 1000) await page.getByRole('button', {name: 'Source'}).click();
    await assertAccessible(page);
    await assertFits(page);
    await page.getByRole('button', {name: 'New…'}).click();
    await page.getByRole('dialog').getByText('Start from').waitFor();
    await assertAccessible(page);
    await context.close();
  });
