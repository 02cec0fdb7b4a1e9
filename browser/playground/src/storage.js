// The project that somebody works on, in the browser's own storage: it is there again the next time.

function open() {
  return new Promise((done, fail) => {
    const request = indexedDB.open('vistrel', 1);
    request.onupgradeneeded = () => request.result.createObjectStore('projects');
    request.onsuccess = () => done(request.result);
    request.onerror = () => fail(request.error);
  });
}

async function withStore(mode, use) {
  const database = await open();
  try {
    return await new Promise((done, fail) => {
      const request = use(database.transaction('projects', mode).objectStore('projects'));
      request.onsuccess = () => done(request.result);
      request.onerror = () => fail(request.error);
    });
  } finally {
    database.close();
  }
}

/** {title, files, page}; undefined for none, also where the browser keeps nothing. */
export const load = () => withStore('readonly', (store) => store.get('current')).catch(() => undefined);

export const save = (kept) => withStore('readwrite', (store) => store.put(kept, 'current')).catch(() => undefined);
