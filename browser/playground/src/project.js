// A project in memory: files by their names, relative to its root, and the ways in and out.
import {strFromU8, strToU8, unzip, zip} from 'fflate';

export const ROOT = '/project/';

const MOST_BYTES = 64 << 20;
const MOST_LINK = 60_000;  // characters; longer ones are cut by what they are sent through

const IS_TEXT = /\.(ya?ml|bob|csv|md|txt|json)$/i;
export const isText = (name) => IS_TEXT.test(name);
export const isPicture = (name) => /\.(png|gif)$/i.test(name);

export class Project {
  /** @param files {name: Uint8Array} */
  constructor(files, title = 'Project') {
    this.files = files;
    this.title = title;
    this.isChanged = false;  // by somebody, since it was opened
  }

  names() {
    // What can be edited first, and what lies in folders behind.
    const place = (name) => `${isText(name) ? 0 : 1}${name.includes('/') ? 1 : 0}${name}`;
    return Object.keys(this.files).sort((a, b) => place(a).localeCompare(place(b)));
  }

  text(name) {
    return strFromU8(this.files[name]);
  }

  setText(name, text) {
    this.files[name] = strToU8(text);
  }

  /** Page sources, which say `page:` at the beginning of a line, and compiled pages. */
  pages() {
    const isSource = (name) => /\.ya?ml$/.test(name) && !/\.test\.ya?ml$/.test(name) && /^page:/m.test(this.text(name));
    return this.names().filter((name) => isSource(name) || /\.kpg$/i.test(name));
  }
}

/** Why a file can't be called so; empty when it can. */
export function faultOfName(name, project) {
  if (!name) return 'A file needs a name.';
  if (!/^[\p{L}\p{M}\p{N}_.\- /]+$/u.test(name) || name.split('/').some((part) => part === '' || part.startsWith('.')))
    return 'Letters, digits, spaces and . - _ can be in a name; / leads into a folder.';
  return name in project.files ? `There is a ${name} already.` : '';
}

// ---- archives

// Of an archive or a folder that has all in one folder, that folder is the root.
function fromOneFolder(files) {
  const names = Object.keys(files);
  const first = names[0]?.split('/')[0];
  if (!names.every((name) => name.startsWith(`${first}/`))) return {files, title: ''};
  return {files: Object.fromEntries(names.map((name) => [name.slice(first.length + 1), files[name]])), title: first};
}

const isWanted = (name) => !/(^|\/)(\.|__MACOSX|node_modules\/|build\/)/.test(name) && !name.endsWith('/');

function projectOf(all, title) {
  const kept = Object.fromEntries(Object.entries(all).filter(([name]) => isWanted(name)));
  const bytes = Object.values(kept).reduce((sum, file) => sum + file.length, 0);
  if (bytes > MOST_BYTES) throw new Error(`That is ${Math.round(bytes / (1 << 20))} MB; a project here can have ${MOST_BYTES >> 20}`);
  const root = fromOneFolder(kept);
  const project = new Project(root.files, root.title || title);
  if (project.names().length === 0) throw new Error('There are no files in it');
  return project;
}

export async function fromArchive(bytes, title) {
  const files = await new Promise((done, fail) =>
    unzip(bytes, {filter: ({name, originalSize}) => isWanted(name) && originalSize <= MOST_BYTES},
          (error, found) => (error ? fail(new Error('This is no archive that can be read')) : done(found))));
  return projectOf(files, title);
}

export function toArchive(project) {
  return new Promise((done, fail) => zip(project.files, (error, bytes) => (error ? fail(error) : done(bytes))));
}

// ---- folders

/** What has been dropped: files, a folder, or an archive. Takes the event's items at once, since they don't last. */
export function fromDrop(transfer) {
  const entries = [...transfer.items].map((item) => item.webkitGetAsEntry?.()).filter(Boolean);
  return entries.length > 0 ? fromEntries(entries) : fromInput(transfer.files);
}

async function fromEntries(entries) {
  if (entries.length === 1 && entries[0].isFile && /\.zip$/i.test(entries[0].name))
    return fromArchive(await bytesOf(entries[0]), entries[0].name.replace(/\.zip$/i, ''));
  const files = {};
  const walk = async (entry, name) => {
    if (!isWanted(`${name}${entry.isDirectory ? '/x' : ''}`)) return;
    if (entry.isFile) files[name] = await bytesOf(entry);
    else for (const each of await listOf(entry)) await walk(each, `${name}/${each.name}`);
  };
  for (const entry of entries) await walk(entry, entry.name);
  return projectOf(files, 'Dropped');
}

const bytesOf = (entry) => new Promise((done, fail) => entry.file(async (file) => done(new Uint8Array(await file.arrayBuffer())), fail));

async function listOf(folder) {
  const reader = folder.createReader();
  const all = [];
  for (;;) {  // it gives a hundred at a time
    const some = await new Promise((done, fail) => reader.readEntries(done, fail));
    if (some.length === 0) return all;
    all.push(...some);
  }
}

/** What an input of files, or of a folder, has. */
export async function fromInput(list) {
  const all = [...list];
  if (all.length === 1 && /\.zip$/i.test(all[0].name))
    return fromArchive(new Uint8Array(await all[0].arrayBuffer()), all[0].name.replace(/\.zip$/i, ''));
  const files = {};
  for (const file of all) files[file.webkitRelativePath || file.name] = new Uint8Array(await file.arrayBuffer());
  return projectOf(files, 'Project');
}

// ---- links: the whole project, compressed, in the part of an address that isn't sent to anybody

async function through(bytes, stream) {
  return new Uint8Array(await new Response(new Blob([bytes]).stream().pipeThrough(stream)).arrayBuffer());
}

const toBase64 = (bytes) => {
  let text = '';
  for (let i = 0; i < bytes.length; i += 32768) text += String.fromCharCode(...bytes.subarray(i, i + 32768));
  return btoa(text);
};
const fromBase64 = (text) => Uint8Array.from(atob(text), (c) => c.charCodeAt(0));

/** The fragment for a link, with its mark. */
export async function toFragment(project, page) {
  const files = project.names().map((name) =>
    isText(name) ? [name, project.text(name)] : [name, toBase64(project.files[name]), 1]);
  const json = strToU8(JSON.stringify({title: project.title, page, files}));
  const packed = await through(json, new CompressionStream('deflate-raw'));
  const text = `#p=${toBase64(packed).replaceAll('+', '-').replaceAll('/', '_').replaceAll('=', '')}`;
  if (text.length > MOST_LINK) throw new Error('The project is too large for a link; save it as an archive instead');
  return text;
}

/** The project of a link and the page it shows; null for a fragment that has none. Throws where it can't be read. */
export async function fromFragment(fragment) {
  if (!fragment.startsWith('#p=')) return null;
  try {
    const packed = fromBase64(fragment.slice(3).replaceAll('-', '+').replaceAll('_', '/'));
    const {title, page, files} = JSON.parse(strFromU8(await through(packed, new DecompressionStream('deflate-raw'))));
    const all = {};
    for (const [name, content, isBase64] of files) all[name] = isBase64 ? fromBase64(content) : strToU8(content);
    return {project: projectOf(all, String(title)), page: String(page ?? '')};
  } catch (error) {
    throw new Error(`The project of this link can't be read: ${error.message}`);
  }
}
