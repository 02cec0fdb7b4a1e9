// Keeps the playground for when there is no network. The build fills in the list and its version.
//
// A newer one waits until no page has the older one open, or somebody asks for it, so that a page never gets files of both.
const VERSION = '@VERSION@';
const FILES = ['@FILES@'];

addEventListener('install', (event) => {
  event.waitUntil(caches.open(VERSION).then((cache) => cache.addAll(FILES)));
});

addEventListener('message', ({data}) => data === 'take over' && skipWaiting());

addEventListener('activate', (event) => {
  const dropOld = async () => {
    for (const name of await caches.keys()) if (name !== VERSION) await caches.delete(name);
    await clients.claim();
  };
  event.waitUntil(dropOld());
});

addEventListener('fetch', (event) => {
  if (event.request.method !== 'GET' || new URL(event.request.url).origin !== location.origin) return;
  event.respondWith(caches.open(VERSION)
      .then((cache) => cache.match(event.request, {ignoreSearch: true}))
      .then((kept) => kept ?? fetch(event.request)));
});
