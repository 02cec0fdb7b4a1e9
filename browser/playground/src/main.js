// The playground: a project's files on the left, what the player shows of it on the right.
import '../../viewer/vistrel-screen.js';
import {Editor} from './editor.js';
import {byId, element} from './elements.js';
import {Models} from './models.js';
import {faultOfName, fromArchive, fromDrop, fromFragment, fromInput, isPicture, isText, Project, ROOT, toArchive, toFragment} from './project.js';
import * as storage from './storage.js';
import {Language, makeStage} from './workers.js';

const SAVE_REST = 600;  // milliseconds after a letter before what is written is kept, and gets the checks that take longer
const FONTS = ['DejaVuSans.ttf', 'DejaVuSans-Bold.ttf'];
const MOST_CONSOLE = 20_000;  // characters

const screen = byId('screen');
screen.makeWorker = makeStage;
byId('remote').addEventListener('remotekey', ({detail}) => screen.key(detail));

let project = new Project({});
let page = '';     // the page source that is shown
let current = '';  // the file that is edited
let files = {};    // what the workers have, by full names: the project's and the fonts
let fonts = {};
let stageProblems = [];
let saveTimer = 0, noticeTimer = 0;
let isMaking = false, isOld = false;  // the page is being made; it has changed since that began
let packed = null;  // whoever waits for the packed project

const language = new Language((name, diagnostics) => {
  editor.takeDiagnostics(name, diagnostics);
  showProblems();
});
const editor = new Editor(byId('editor'), language, (name, text) => {
  project.setText(name, text);
  fileChanged(name);
});

const models = new Models(screen, ({file, line}) => goTo(file.replace(ROOT, ''), line));

// What went wrong, or can be undone, stays until somebody has read it.
function notify(text, stays = false, undo = null) {
  clearTimeout(noticeTimer);
  const close = () => (byId('notice').textContent = '');
  byId('notice').textContent = text;
  if (!stays) noticeTimer = setTimeout(close, 5000);
  else byId('notice').append(' ', element('button', {type: 'button', textContent: 'Close', onclick: close}));
  if (undo) byId('notice').append(' ', element('button', {type: 'button', textContent: undo.title, onclick: undo.act}));
}

const counted = (n) => `${n} ${n === 1 ? 'file' : 'files'}`;

// ---- files

// From now on it is another project than that of the address or the gallery.
function changed() {
  project.isChanged = true;
  forgetLink();
}

function forgetLink() {
  if (location.hash.startsWith('#p=')) history.replaceState(null, '', location.pathname + location.search);
}

function fileChanged(name) {
  changed();
  files[ROOT + name] = project.files[name];
  screen.send({put: ROOT + name, bytes: project.files[name]});
  makeAgain();
  clearTimeout(saveTimer);
  saveTimer = setTimeout(() => {
    saveTimer = 0;
    language.put(ROOT + name, project.files[name]);
    language.saved(name);
    keep();
    showPages();
  }, SAVE_REST);
}

addEventListener('pagehide', () => saveTimer && keep());

// At once, or as soon as the stage is done with what it has.
function makeAgain() {
  isOld = isMaking;
  if (isMaking || !page) return;
  isMaking = true;
  stageProblems = [];
  screen.send({reload: true});
}

const kept = () => ({title: project.title, files: project.files, isChanged: project.isChanged, page});
const keep = () => storage.save('current', kept());

function showFiles() {
  byId('title').textContent = project.title;
  byId('file-list').replaceChildren(...project.names().map((name) => {
    const button = element('button', {type: 'button', textContent: name});
    button.setAttribute('aria-current', String(name === current));
    button.onclick = () => edit(name);
    return element('li', {}, button);
  }));
  byId('file-list').querySelector('[aria-current=true]')?.scrollIntoView({block: 'nearest', inline: 'nearest'});
  const has = Boolean(current);
  byId('rename-file').disabled = byId('remove-file').disabled = !has;
}

function showPages() {
  const pages = project.pages();
  const select = byId('pages');
  if (JSON.stringify(pages) !== JSON.stringify([...select.options].map(({value}) => value)))
    select.replaceChildren(...pages.map((name) => element('option', {value: name, textContent: name})));
  select.disabled = pages.length === 0;
  select.value = page;
}

function edit(name, line = 0) {
  current = name;
  const asText = isText(name);
  byId('editor').hidden = !asText;
  byId('picture').hidden = asText;
  if (asText) {
    editor.show(name, project.text(name), line);
  } else {
    byId('picture').replaceChildren(`${name}, ${project.files[name].length.toLocaleString()} bytes`);
    if (isPicture(name)) {
      const source = URL.createObjectURL(new Blob([project.files[name]], {type: name.endsWith('.png') ? 'image/png' : 'image/gif'}));
      byId('picture').append(element('br'), element('img', {src: source, alt: `The picture ${name}`, onload: () => URL.revokeObjectURL(source)}));
    }
  }
  showFiles();
}

function goTo(name, line) {
  if (!(name in project.files)) return;
  showView('source');
  edit(name, line);
}

// ---- the stage

function openPage(name) {
  page = name;
  stageProblems = [];
  byId('console').textContent = '';
  showPages();
  isMaking = Boolean(name);
  isOld = false;
  if (name) screen.setAttribute('label', `The page ${name}`), screen.open(ROOT + name, files);
  else byId('status').textContent = 'The project has no page yet.';
}

function openProject(next, wanted = '') {
  project = next;
  current = '';
  editor.forgetAll();
  files = {...fonts};
  for (const name of project.names()) files[ROOT + name] = project.files[name];
  language.start(files);
  const pages = project.pages();
  openPage(pages.includes(wanted) ? wanted : pages.includes('guide.yaml') ? 'guide.yaml' : pages[0] ?? '');
  const first = page || project.names()[0];
  if (first) edit(first);
  showFiles();
  showProblems();
  keep();
}

screen.addEventListener('console', ({detail}) => {
  const log = byId('console');
  log.textContent = (log.textContent + detail).slice(-MOST_CONSOLE);
  log.scrollTop = log.scrollHeight;
});

screen.addEventListener('message', ({detail}) => {
  if (detail.made) {
    isMaking = false;
    stageProblems = detail.made;
    byId('status').textContent = detail.isShown ? `Made in ${Math.max(1, Math.round(detail.spent))} ms` : 'Not shown until the errors are mended';
    document.body.dataset.made = String(Number(document.body.dataset.made ?? 0) + 1);
    showProblems();
    if (isOld) makeAgain();
    models.look();
  }
  if (detail.errors) {
    stageProblems = [...stageProblems, ...detail.errors].slice(-100);
    showProblems();
  }
  if (detail.stopped) notify(`The page was ${detail.stopped}. It can go on.`);
  if ('packed' in detail) packed?.(detail);
});

// ---- problems: of the page that is shown, and of the files that have been edited

function showProblems() {
  const all = [];
  const seen = new Set();
  const add = (severity, name, line, text) => {
    const key = `${name}:${line}:${text}`;
    if (!seen.has(key)) all.push({severity, name, line, text});
    seen.add(key);
  };
  for (const {severity, file, line, text, uses} of stageProblems)
    add(severity, file.replace(ROOT, ''), line, [text, ...uses].join('\n'));
  for (const [name, diagnostics] of editor.diagnostics)
    for (const {severity, range, message} of diagnostics) add(severity === 1 ? 'error' : 'warning', name, range.start.line + 1, message);
  all.sort((a, b) => (a.severity === b.severity ? 0 : a.severity === 'error' ? -1 : 1));
  byId('problems-title').textContent = all.length ? `Problems (${all.length})` : 'Problems';
  byId('problem-list').replaceChildren(...all.map(({severity, name, line, text}) => {
    const place = element('span', {className: 'place', textContent: line ? `${name}:${line}` : name});
    const button = element('button', {type: 'button', className: severity}, place, text);
    button.disabled = !(name in project.files);
    button.onclick = () => edit(name, line);
    return element('li', {}, button);
  }));
}

// ---- the tools

byId('pages').onchange = ({target}) => (openPage(target.value), keep());
byId('restart').onclick = () => openPage(page);
byId('line').onsubmit = (event) => {
  event.preventDefault();
  screen.type(new FormData(event.target).get('text'));
  event.target.reset();
};

// Where there is no space for both.
function showView(view) {
  document.body.dataset.view = view;
  for (const button of byId('views').children) button.setAttribute('aria-pressed', String(button.dataset.view === view));
  showFiles();
}

for (const button of byId('views').children) button.onclick = () => showView(button.dataset.view);
document.body.dataset.view = 'screen';

function askName(title, value, ok) {
  const dialog = byId('name-dialog');
  byId('name-title').textContent = title;
  byId('name-input').value = value;
  byId('name-fault').textContent = '';
  byId('name-form').onsubmit = (event) => {
    const name = byId('name-input').value.trim();
    const fault = name === value ? '' : faultOfName(name, project);
    byId('name-fault').textContent = fault;
    if (fault) return event.preventDefault();
    if (name !== value) ok(name);
  };
  byId('name-cancel').onclick = () => dialog.close();
  dialog.showModal();
  byId('name-input').select();
}

function put(name, bytes) {
  changed();
  if (bytes) {
    project.files[name] = bytes;
    files[ROOT + name] = bytes;
  } else {
    delete project.files[name];
    delete files[ROOT + name];
    language.close(name);
    editor.takeDiagnostics(name, []);
  }
  for (const to of [language, {put: (path, b) => screen.send({put: path, bytes: b})}]) to.put(ROOT + name, bytes);
}

function namesChanged(next, wanted = page) {
  current = '';
  if (!project.files[wanted]) openPage(project.pages()[0] ?? '');
  else if (wanted !== page) openPage(wanted);
  else makeAgain();
  if (next) edit(next);
  else showFiles();
  showPages();
  language.savedAll();  // what they say of each other's names may be another thing now
  keep();
}

const STARTS = {yaml: '# A page. Its keys complete as you type.\nflags: 16bit\npage: {type: group, width: 720, height: 480, bgColor: "#204060"}\n', bob: '// Scripts of a page.\n'};

byId('add-file').onclick = () => askName('A new file', 'page.yaml', (name) => {
  put(name, new TextEncoder().encode(STARTS[name.split('.').pop()] ?? ''));
  namesChanged(name);
});
byId('add-file').title = 'A page source (.yaml), a script (.bob), or any other text';
byId('rename-file').onclick = () => askName(`Rename ${current}`, current, (name) => {
  const bytes = project.files[current], wasShown = page === current;
  put(current, null);
  put(name, bytes);
  namesChanged(name, wasShown ? name : page);
});
byId('remove-file').onclick = () => {
  const name = current, bytes = project.files[current];
  put(name, null);
  namesChanged(project.names()[0]);
  const act = () => (put(name, bytes), namesChanged(name), notify(`${name} is back`));
  notify(`${name} is removed.`, true, {title: 'Bring it back', act});
};

// ---- in and out

const closeDialogs = () => document.querySelectorAll('dialog[open]').forEach((dialog) => dialog.close());

/** Opens what is promised, {project, page}, and answers whether it could. What somebody has changed before can be had back. */
async function tryOpen(next) {
  try {
    const {project: opened, page: wanted} = await next;
    closeDialogs();
    const before = project.isChanged ? kept() : null;
    if (before) storage.save('before', before);
    openProject(opened, wanted);
    const said = `${project.title}: ${counted(project.names().length)}`;
    if (before) notify(said, true, {title: `Back to ${before.title}`, act: () => tryOpen(projectOfKept(before))});
    else notify(said);
    return true;
  } catch (error) {
    closeDialogs();  // they would lie over what is wrong
    notify(error.message, true);
    return false;
  }
}

const tryOpenProject = (next) => tryOpen(next.then((opened) => ({project: opened})));

function projectOfKept({title, files: all, isChanged, page: shown}) {
  const opened = new Project(all, title);
  opened.isChanged = isChanged;
  return {project: opened, page: shown};
}

async function add(list) {
  closeDialogs();
  const all = await Promise.all([...list].map(async (file) => [file.name, new Uint8Array(await file.arrayBuffer())]));
  for (const [name, bytes] of all) put(name, bytes), editor.forget(name);
  if (all.length > 0) namesChanged(all[0][0]);
  notify(`${counted(all.length)} added`);
}

const bytesAt = async (place) => {
  const answer = await fetch(place);
  if (!answer.ok) throw new Error(`${place} can't be loaded`);
  return new Uint8Array(await answer.arrayBuffer());
};

const fromGallery = async ({archive, title}) => {
  const opened = await fromArchive(await bytesAt(archive), title);
  opened.title = title;
  return opened;
};

async function showGallery() {
  const choice = (title, about, onclick) =>
    element('li', {}, element('button', {type: 'button', onclick}, element('strong', {textContent: title}), element('span', {textContent: about})));
  const all = await (await fetch('gallery/gallery.json')).json();
  const choices = all.map((entry) => choice(entry.title, entry.about, () => tryOpenProject(fromGallery(entry))));
  const before = await storage.load('before');
  if (before) choices.push(choice(`Back to ${before.title}`, 'What you worked on before, as you left it', () => tryOpen(projectOfKept(before))));
  byId('gallery-list').replaceChildren(...choices);
  byId('gallery').showModal();
}

byId('gallery-button').onclick = () => showGallery().catch((error) => notify(error.message, true));
byId('open-button').onclick = () => byId('open').showModal();
byId('save-button').onclick = () => byId('save').showModal();
for (const id of ['open-files', 'open-folder'])
  byId(id).onchange = ({target}) => {
    tryOpenProject(fromInput(target.files));
    target.value = '';
  };
byId('add-files').onchange = async ({target}) => {
  await add(target.files);
  target.value = '';
};

const hasFiles = ({dataTransfer}) => dataTransfer.types.includes('Files');  // and is no text of the editor
addEventListener('dragover', (event) => {
  if (!hasFiles(event)) return;
  event.preventDefault();
  byId('drop').hidden = false;
});
addEventListener('dragleave', (event) => event.relatedTarget ?? (byId('drop').hidden = true));
addEventListener('drop', (event) => {
  if (!hasFiles(event)) return;
  event.preventDefault();
  byId('drop').hidden = true;
  tryOpenProject(fromDrop(event.dataTransfer));
});

function download(bytes, name) {
  const link = element('a', {href: URL.createObjectURL(new Blob([bytes], {type: 'application/zip'})), download: name});
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 60_000);
  byId('save').close();
}

const fileTitle = () => project.title.replace(/[^\w-]+/g, '-').replace(/^-|-$/g, '').toLowerCase() || 'project';
byId('save-project').onclick = async () => download(await toArchive(project), `${fileTitle()}.zip`);
byId('save-pack').onclick = async () => {
  closeDialogs();
  if (!project.files['vistrel.yaml']) return notify('For that the project needs a vistrel.yaml that names its pages', true);
  screen.send({pack: `${ROOT}vistrel.yaml`, archive: '/packed.zip'});
  const {packed: bytes, messages} = await new Promise((done) => (packed = done));
  packed = null;
  if (bytes) return download(bytes, `${fileTitle()}-player.zip`);
  stageProblems = messages;
  showProblems();
  notify('It can’t be built; the problems say why', true);
};

byId('link-button').onclick = async () => {
  try {
    const fragment = await toFragment(project, page);
    history.replaceState(null, '', fragment);
    await navigator.clipboard.writeText(location.href);
    notify('The link is copied. It holds the whole project.');
  } catch (error) {
    notify(location.hash.startsWith('#p=') && error.name === 'NotAllowedError' ? 'The link is in the address bar' : error.message, error.name !== 'NotAllowedError');
  }
};

// ---- the beginning

async function begin() {
  fonts = Object.fromEntries(await Promise.all(
      FONTS.map(async (name) => [`/usr/share/fonts/truetype/dejavu/${name}`, await bytesAt(`fonts/${name}`)])));
  const last = await storage.load('current');
  if (last) ({project, page} = projectOfKept(last));  // also for whoever wants it back after a link
  if (hasLink() && await tryOpen(fromFragment(location.hash))) return;
  if (project.names().length > 0) return openProject(project, page);
  const [first] = await (await fetch('gallery/gallery.json')).json();
  openProject(await fromGallery(first));
}

const hasLink = () => location.hash.startsWith('#p=');
addEventListener('hashchange', () => hasLink() && tryOpen(fromFragment(location.hash)));
begin().catch((error) => notify(`The playground can't begin: ${error.message}`, true));

async function keepForLater() {
  const {serviceWorker} = navigator;
  const registration = await serviceWorker.register('sw.js');
  const offer = (newer) => {
    if (newer?.state !== 'installed' || !serviceWorker.controller) return;
    const act = () => {
      serviceWorker.addEventListener('controllerchange', () => location.reload());
      newer.postMessage('take over');
    };
    notify('There is a newer playground.', true, {title: 'Use it', act});
  };
  offer(registration.waiting);
  registration.addEventListener('updatefound', () => {
    const newer = registration.installing;
    newer.addEventListener('statechange', () => offer(newer));
  });
}
if ('serviceWorker' in navigator) keepForLater().catch(() => undefined);  // it works online
