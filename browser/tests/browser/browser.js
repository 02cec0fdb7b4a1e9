// Chromium as Debian has it, without a window.
import assert from 'node:assert/strict';
import {createHash} from 'node:crypto';
import {createRequire} from 'node:module';
import {chromium} from 'playwright-core';

export async function openBrowser() {
  return chromium.launch({
    executablePath: '/usr/bin/chromium',
    args: ['--no-sandbox', '--disable-gpu', '--disable-dev-shm-usage'],
  });
}

/** A new page of the browser whose errors end the test that looks at `faults`. */
export async function openPage(browser, options = {}) {
  const context = await browser.newContext(options);
  const page = await context.newPage();
  const faults = [];
  page.on('pageerror', (error) => faults.push(String(error)));
  page.on('console', (message) => {
    if (message.type() === 'error' && !/404/.test(message.text())) faults.push(message.text());
  });
  return {page, faults, context};
}

/** What a <vistrel-screen> shows, as bytes R G B A. */
export async function pixelsOf(page, selector = 'vistrel-screen') {
  const text = await page.evaluate((selector) => {
    const {data} = document.querySelector(selector).pixels();
    let bytes = '';
    for (let at = 0; at < data.length; at += 32768) bytes += String.fromCharCode(...data.subarray(at, at + 32768));
    return btoa(bytes);
  }, selector);
  return Buffer.from(text, 'base64');
}

/** Waits until the screen shows these pixels; answers whether it does. */
export async function showsSoon(page, pixels, selector) {
  for (let i = 0; i < 200; ++i) {
    if ((await pixelsOf(page, selector)).equals(pixels)) return true;
    await page.waitForTimeout(50);
  }
  return false;
}

/** Keeps a hash of everything that the screen shows from now on; to be called before a page is opened. */
export async function rememberPictures(page, selector = 'vistrel-screen') {
  await page.evaluate((selector) => {
    const screen = document.querySelector(selector);
    window.pictures = new Set();
    screen.addEventListener('frame', async () => {
      const hash = new Uint8Array(await crypto.subtle.digest('SHA-256', screen.pixels().data));
      window.pictures.add([...hash].map((byte) => byte.toString(16).padStart(2, '0')).join(''));
    });
  }, selector);
}

/** Waits until the screen has shown one of these pictures, be it for a moment. */
export async function hasShown(page, pictures) {
  const hashes = pictures.map((pixels) => createHash('sha256').update(pixels).digest('hex'));
  await page.waitForFunction((hashes) => hashes.some((hash) => window.pictures.has(hash)), hashes);
}

/** Holds what is there against the rules of axe-core. The page's context must have bypassCSP. */
export async function assertAccessible(page) {
  await page.addScriptTag({path: createRequire(import.meta.url).resolve('axe-core/axe.min.js')});
  const {violations} = await page.evaluate(() => window.axe.run());
  assert.deepEqual(violations.map(({id, nodes}) => `${id}: ${nodes.map(({target}) => target).join(' ')}`), []);
}

/** That nothing has to be scrolled sideways. */
export async function assertFits(page) {
  assert.ok(!(await page.evaluate(() => document.documentElement.scrollWidth > innerWidth)), 'it scrolls sideways');
}
