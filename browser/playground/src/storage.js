// Projects in the browser's own storage: "current", which is there again the next time, and the one "before".

// It stays open, so that what is saved when somebody leaves is on its way before the page is gone.
let database;
const opening = new Promise((done, fail) => {
  const request = indexedDB.open('vistrel', 1);
  request.onupgradeneeded = () => request.result.createObjectStore('projects');
  request.onsuccess = () => done(database = request.result);
  request.onerror = () => fail(request.error);
});
opening.catch(() => undefined);  // the browser keeps nothing

const storeFor = (mode) => database.transaction('projects', mode).objectStore('projects');

/** The {title, files, isChanged, page} of that name; undefined for none, also where the browser keeps nothing. */
export async function load(name) {
  try {
    await opening;
    return await new Promise((done, fail) => {
      const request = storeFor('readonly').get(name);
      request.onsuccess = () => done(request.result);
      request.onerror = () => fail(request.error);
    });
  } catch {
    return undefined;
  }
}

/** Saves one, where the browser keeps anything: at once when the storage is open. */
export function save(name, kept) {
  if (!database) return void opening.then(() => save(name, kept), () => undefined);
  try {
    const store = storeFor('readwrite');
    store.put(kept, name);
    store.transaction.commit();
  } catch {
    // The project lasts as long as the page.
  }
}
