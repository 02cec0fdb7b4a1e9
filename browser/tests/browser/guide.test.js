// The guide: its documents can be read, and pages in it are the player's.
import assert from 'node:assert/strict';
import {existsSync, readFileSync, readdirSync} from 'node:fs';
import {join} from 'node:path';
import {after, before, test} from 'node:test';
import {addressOf, serve} from '../../serve.js';
import {shot, top} from '../native.js';
import {assertAccessible, assertFits, openBrowser, openPage, showsSoon} from './browser.js';

const guide = join(top, 'build/web/playground/guide');
const documents = readdirSync(guide).filter((name) => name.endsWith('.html'));
let browser, server, address;

before(async () => {
  server = await serve({'/': join(guide, '..')});
  address = new URL('guide/', addressOf(server));
  browser = await openBrowser();
});

after(async () => {
  await browser?.close();
  server?.close();
});

test('every page of it shows as kpg shows it, at the press of a button', async () => {
  const {page, faults, context} = await openPage(browser);
  await page.goto(new URL('authoring.html', address).href);
  const pages = await page.locator('.page').evaluateAll((all) => all.map(({dataset}) => [dataset.page, dataset.keys]));
  assert.ok(pages.length >= 10, `${pages.length} pages`);
  for (const [name, keys] of pages) {
    const actions = keys.split(' ').filter((key) => key).flatMap((key) => ['--key', key]);
    await page.locator(`.page[data-page="${name}"] button`).click();
    const shows = await showsSoon(page, shot(join(guide, name), ...actions).pixels, `.page[data-page="${name}"] vistrel-screen`);
    assert.ok(shows, `${name} shows something else`);
    await page.locator(`.page[data-page="${name}"]`).evaluate((place) => place.replaceChildren());
  }
  assert.deepEqual(faults, []);
  await context.close();
});

test('its links lead somewhere', () => {
  for (const document of documents) {
    const text = readFileSync(join(guide, document), 'utf8');
    for (const [, to] of text.matchAll(/(?:href|src)="([^":]*)"/g)) {
      const [file, anchor] = to.split('#');
      const target = join(guide, file || document);
      assert.ok(existsSync(target), `${document} leads to ${to}`);
      if (anchor) assert.ok(readFileSync(target, 'utf8').includes(`id="${anchor}"`), `${document} leads to ${to}`);
    }
  }
});

for (const document of documents)
  test(`everybody can read ${document}`, async () => {
    const {page, faults, context} = await openPage(browser, {bypassCSP: true, viewport: {width: 390, height: 800}});
    await page.goto(new URL(document, address).href);
    await assertAccessible(page);
    await assertFits(page);
    assert.deepEqual(faults, []);
    await context.close();
  });
