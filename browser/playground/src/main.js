// The playground: a project's files on the left, what the player shows of it on the right.
import '../../viewer/vistrel-screen.js';
import {Editor} from './editor.js';
import {faultOfName, fromArchive, fromDrop, fromFragment, fromInput, isPicture, isText, Project, ROOT, toArchive, toFragment} from './project.js';
import * as storage from './storage.js';
import {Language, makeStage} from './workers.js';

const REST = 40;        // milliseconds after a letter before the page is made again
const SAVE_REST = 600;  // and before what is written is kept, and looked at by the checks that take longer
const FONTS = ['DejaVuSans.ttf', 'DejaVuSans-Bold.ttf'];
const MOST_CONSOLE = 20_000;  // characters

const byId = (id) => document.getElementById(id);
const screen = byId('screen');
screen.makeWorker = makeStage;

let project = new Project({});
let page = '';     // the page source that is shown
let current = '';  // the file that is edited
let files = {};    // what the workers have, by full names: the project's and the fonts
let fonts = {};
let stageProblems = [];
let saveTimer = 0, makeTimer = 0, noticeTimer = 0;
let packed = null;  // whoever waits for the packed project

const language = new Language((name, diagnostics) => {
  editor.takeDiagnostics(name, diagnostics);
  showProblems();
});
const editor = new Editor(byId('editor'), language, (name, text) => {
  project.setText(name, text);
  fileChanged(name);
});

// What went wrong stays until somebody has read it.
function notify(text, isFault = false) {
  clearTimeout(noticeTimer);
  byId('notice').textContent = text;
  if (!isFault) noticeTimer = setTimeout(() => (byId('notice').textContent = ''), 5000);
  else byId('notice').append(' ', element('button', {type: 'button', textContent: 'Close', onclick: () => (byId('notice').textContent = '')}));
}

function element(tag, properties = {}, ...children) {
  const made = Object.assign(document.createElement(tag), properties);
  made.append(...children);
  return made;
}

// ---- files

function fileChanged(name) {
  files[ROOT + name] = project.files[name];
  screen.send({put: ROOT + name, bytes: project.files[name]});
  clearTimeout(makeTimer);
  makeTimer = setTimeout(makeAgain, REST);
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

function makeAgain() {
  stageProblems = [];
  if (page) screen.send({reload: true});
}

const keep = () => storage.save({title: project.title, files: project.files, page});

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

// ---- the stage

function openPage(name) {
  page = name;
  stageProblems = [];
  byId('console').textContent = '';
  showPages();
  if (name) screen.setAttribute('label', `The page ${name}`), screen.open(ROOT + name, files);
  else byId('status').textContent = 'The project has no page yet.';
}

async function openProject(next, wanted = '') {
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
    stageProblems = detail.made;
    byId('status').textContent = detail.isShown ? `Made in ${Math.max(1, Math.round(detail.spent))} ms` : 'Not shown until the errors are mended';
    document.body.dataset.made = String(Number(document.body.dataset.made ?? 0) + 1);
    showProblems();
    look();
  }
  if (detail.errors) {
    stageProblems = [...stageProblems, ...detail.errors].slice(-100);
    showProblems();
  }
  if (detail.stopped) notify(`The page was ${detail.stopped}. It can go on.`);
  if (detail.inspected) showWidgets(detail.inspected);
  if (detail.timeline) showTimeline(detail.timeline);
  if ('packed' in detail) packed?.(detail);
});

// ---- what the studio's models tell of the page, where somebody looks at it

function look() {
  if (byId('inspector').open) screen.send({inspect: true});
  if (byId('timeline').open) screen.send({timeline: byId('timeline-filter').value});
}

let lookTimer = 0;
function lookSoon() {
  lookTimer ||= setTimeout(() => ((lookTimer = 0), look()), 200);
}
for (const news of ['frame', 'console']) screen.addEventListener(news, lookSoon);
for (const id of ['inspector', 'timeline']) byId(id).addEventListener('toggle', look);
byId('timeline-filter').oninput = look;

function showTimeline(rows) {
  const space = byId('timeline-space');
  const isAtEnd = space.scrollTop + space.clientHeight >= space.scrollHeight - 4;
  byId('timeline-rows').replaceChildren(...rows.map(({time, kind, depth, text, cost}) => {
    const what = element('td', {textContent: text});
    what.style.paddingLeft = `${depth * 12 + 8}px`;
    return element('tr', {className: kind}, element('td', {textContent: time}), element('td', {textContent: kind}), what, element('td', {textContent: cost}));
  }));
  if (isAtEnd) space.scrollTop = space.scrollHeight;
}

function showWidgets({widgets, focus}) {
  byId('focus-summary').textContent = focus;
  byId('widgets').replaceChildren(...widgets.map(({depth, label, bounds, hidden, focused, notSeen, why}) => {
    const row = element('li', {className: focused ? 'focused' : ''}, `${label}  ${bounds.slice(0, 2).join(', ')}  ${bounds.slice(2).join(' × ')}`);
    row.style.paddingLeft = `${depth * 16}px`;
    if (focused) row.append(' has the focus');
    if (hidden) row.append(' is hidden');
    if (notSeen) row.append(element('span', {className: 'why', textContent: `not to be seen${why.length ? `: ${why.join('; ')}` : ''}`}));
    return row;
  }));
}

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
for (const button of byId('views').children)
  button.onclick = () => {
    document.body.dataset.view = button.dataset.view;
    for (const each of byId('views').children) each.setAttribute('aria-pressed', String(each === button));
  };
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

function namesChanged(next) {
  current = '';
  if (!project.files[page]) openPage(project.pages()[0] ?? '');
  else makeAgain();
  if (next) edit(next);
  else showFiles();
  showPages();
  keep();
}

const STARTS = {yaml: '# A page. Its keys complete as you type.\nflags: 16bit\npage: {type: group, width: 720, height: 480, bgColor: "#204060"}\n', bob: '// Scripts of a page.\n'};

byId('add-file').onclick = () => askName('A new file', 'page.yaml', (name) => {
  put(name, new TextEncoder().encode(STARTS[name.split('.').pop()] ?? ''));
  namesChanged(name);
});
byId('add-file').title = 'A page source (.yaml), a script (.bob), or any other text';
byId('rename-file').onclick = () => askName(`Rename ${current}`, current, (name) => {
  const bytes = project.files[current];
  if (page === current) page = name;
  put(current, null);
  put(name, bytes);
  namesChanged(name);
});
byId('remove-file').onclick = () => {
  const name = current, bytes = project.files[current];
  put(name, null);
  namesChanged(project.names()[0]);
  notify(`${name} is removed.`, true);
  const back = element('button', {type: 'button', textContent: 'Bring it back'});
  back.onclick = () => (put(name, bytes), namesChanged(name), notify(`${name} is back`));
  byId('notice').append(' ', back);
};

// ---- in and out

const closeDialogs = () => document.querySelectorAll('dialog[open]').forEach((dialog) => dialog.close());

async function tryOpen(next) {
  try {
    const opened = await next;
    closeDialogs();
    await openProject(opened);
    notify(`${project.title}: ${project.names().length} files`);
  } catch (error) {
    closeDialogs();  // they would lie over what is wrong
    notify(error.message, true);
  }
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
  const all = await (await fetch('gallery/gallery.json')).json();
  byId('gallery-list').replaceChildren(...all.map((entry) => {
    const button = element('button', {type: 'button'}, element('strong', {textContent: entry.title}), element('span', {textContent: entry.about}));
    button.onclick = () => tryOpen(fromGallery(entry));
    return element('li', {}, button);
  }));
  byId('gallery').showModal();
}

byId('gallery-button').onclick = () => showGallery().catch((error) => notify(error.message, true));
byId('open-button').onclick = () => byId('open').showModal();
byId('save-button').onclick = () => byId('save').showModal();
for (const id of ['open-files', 'open-folder'])
  byId(id).onchange = ({target}) => {
    tryOpen(fromInput(target.files));
    target.value = '';
  };

addEventListener('dragover', (event) => {
  event.preventDefault();
  byId('drop').hidden = false;
});
addEventListener('dragleave', (event) => event.relatedTarget ?? (byId('drop').hidden = true));
addEventListener('drop', (event) => {
  event.preventDefault();
  byId('drop').hidden = true;
  tryOpen(fromDrop(event.dataTransfer));
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
  try {
    const linked = await fromFragment(location.hash);
    if (linked) return openProject(linked.project, linked.page);
  } catch (error) {
    notify(error.message, true);
  }
  const kept = await storage.load();
  if (kept && Object.keys(kept.files).length > 0) return openProject(new Project(kept.files, kept.title), kept.page);
  const [first] = await (await fetch('gallery/gallery.json')).json();
  return openProject(await fromGallery(first));
}

addEventListener('hashchange', async () => {
  if (location.hash.startsWith('#p=')) tryOpen(fromFragment(location.hash).then((linked) => linked.project));
});
begin().catch((error) => notify(`The playground can't begin: ${error.message}`, true));
if ('serviceWorker' in navigator) navigator.serviceWorker.register('sw.js').catch(() => undefined);  // it works online
