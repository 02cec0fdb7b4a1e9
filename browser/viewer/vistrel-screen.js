// <vistrel-screen src="guide.kpg">: a page of the player, live.
//
//   src      the page; what it names is fetched from beside it
//   label    what to call it for those who hear it; by default the file's name
//   remote   shows the remote control below
//   scale    1, 2, ...: so many pixels of the display to one; by default as many as there is space for
//
// While it has the focus, the keyboard is the remote control: arrows, Enter, Backspace, Delete, digits, and the pad of
// U I O, J K L and M , . round K, select. Tab leaves it.
//
// An element in the slot "over" lies over the picture, which is the part "picture" for style sheets.
//
// Events: "page" when one has been opened or not (detail.opened), "console" with the text that the console shows
// (detail), "failed" when the player had to end (detail). What it is made of: playerworker.js, player.js,
// vistrel-player.js and .wasm, in this file's folder.
import {SCREEN_HEIGHT, SCREEN_WIDTH} from './player.js';
import {sheetOf} from './sheet.js';
import './remote.js';

const PATIENCE = 8000;  // milliseconds without a sign of life before a page may be given up

const KEYS = {
  ArrowUp: 'Up', ArrowDown: 'Down', ArrowLeft: 'Left', ArrowRight: 'Right', Enter: 'Select', Backspace: 'Backspace',
  Delete: 'Clear', u: 'UpLeft', i: 'Up', o: 'UpRight', j: 'Left', k: 'Select', l: 'Right', m: 'DownLeft', ',': 'Down',
  '<': 'Down', '.': 'DownRight', '>': 'DownRight', s: 'S',
};

/** The remote control's key for a key of the keyboard; undefined for those that mean nothing here. */
export function remoteKeyOf(event) {
  if (event.ctrlKey || event.altKey || event.metaKey) return undefined;
  if (/^[0-9]$/.test(event.key)) return event.key;
  return KEYS[event.key.length === 1 ? event.key.toLowerCase() : event.key];
}

const STYLE = `
  :host { display: inline-block; position: relative; max-width: 100%; line-height: 0; }
  :host([hidden]) { display: none; }
  .screen { position: relative; display: inline-block; max-width: 100%; }
  canvas { display: block; background: #000; max-width: 100%; height: auto; border-radius: 3px; }
  canvas.whole { image-rendering: pixelated; }
  canvas:focus-visible { outline: 3px solid var(--vistrel-accent, #f4d860); outline-offset: 3px; }
  .notice { position: absolute; left: 0; right: 0; bottom: 0; margin: 0; padding: 10px 14px; background: #101a24f0; color: #fff;
    font: 15px/1.4 system-ui, sans-serif; white-space: pre-wrap; border-radius: 0 0 3px 3px; }
  .notice:empty { display: none; }
  .notice button { font: inherit; margin-left: 12px; padding: 4px 12px; }
  ::slotted([slot=over]) { position: absolute; inset: 0; width: 100%; height: 100%; pointer-events: none; }
  vistrel-remote { margin-top: 14px; line-height: 1; }
  .below { display: block; text-align: center; }
`;

export class VistrelScreen extends HTMLElement {
  static observedAttributes = ['src', 'label', 'remote', 'scale'];

  #canvas = document.createElement('canvas');
  #notice = document.createElement('p');
  #below = document.createElement('span');
  #context;
  #worker = null;
  #shown = null;  // what was opened the last time: {path, files}
  #done = [];  // keys and lines since then
  #patience = 0;
  #sizes = new ResizeObserver(() => this.#fit());

  /** What makes the worker that runs the page; to be set before anything is opened. */
  makeWorker = () => new Worker(new URL('./playerworker.js', import.meta.url), {type: 'module', name: 'vistrel-player'});

  /** Whether scripts may open files, for pages that are opened from here on. */
  scriptsOpenFiles = true;

  constructor() {
    super();
    this.#canvas.width = SCREEN_WIDTH;
    this.#canvas.height = SCREEN_HEIGHT;
    this.#canvas.tabIndex = 0;
    this.#canvas.setAttribute('role', 'application');
    this.#canvas.setAttribute('aria-roledescription', 'television screen');
    this.#context = this.#canvas.getContext('2d', {alpha: false});
    this.#canvas.addEventListener('keydown', (event) => this.#keyDown(event));
    this.#canvas.addEventListener('pointerdown', () => this.#canvas.focus());
    this.#notice.className = 'notice';
    this.#notice.setAttribute('role', 'status');
    this.#below.className = 'below';
    const screen = document.createElement('div');
    screen.className = 'screen';
    screen.part = 'picture';
    const over = document.createElement('slot');
    over.name = 'over';
    screen.append(this.#canvas, over, this.#notice);
    const root = this.attachShadow({mode: 'open', delegatesFocus: true});
    root.adoptedStyleSheets = [sheetOf(STYLE)];
    root.append(screen, this.#below);
    root.addEventListener('remotekey', ({detail}) => this.key(detail));
  }

  connectedCallback() {
    this.#sizes.observe(this.parentElement ?? this);
    this.#fit();
    if (!this.#worker && this.#shown) this.#start();
    else if (!this.#worker && this.src) this.reload();
  }

  disconnectedCallback() {
    this.#sizes.disconnect();
    this.#end();
  }

  attributeChangedCallback(name) {
    if (name === 'src' && this.isConnected && this.src) this.reload();
    if (name === 'scale') this.#fit();
    if (name === 'remote') this.#below.replaceChildren(...(this.hasAttribute('remote') ? [document.createElement('vistrel-remote')] : []));
    const page = this.src?.split('/').pop();
    this.#canvas.setAttribute('aria-label', this.getAttribute('label') ?? (page ? `The page ${page}` : 'A page'));
  }

  get src() {
    return this.getAttribute('src');
  }
  set src(page) {
    this.setAttribute('src', page);
  }

  /** Opens the page of src anew, in a new player; again: presses and types what was pressed and typed before. */
  reload({again = false} = {}) {
    const url = new URL(this.src, document.baseURI);
    if (url.origin !== location.origin) return this.#say(`${this.src} is on another server; a page has to be on its own`);
    this.#open({path: decodeURIComponent(url.pathname), files: {}}, again ? this.#done : []);
  }

  /** Opens a page of files in memory: {'/guide.kpg': Uint8Array, ...}. What they lack is fetched. */
  open(path, files) {
    this.#open({path, files});
  }

  /** Presses a key of the remote control by its name. */
  key(name) {
    this.#do({key: name});
  }

  /** Types a line into the console, which runs it as a script. */
  type(line) {
    this.#do({type: line});
  }

  /** Sends the worker a message of its own kind. */
  send(message) {
    this.#tell(message);
  }

  /** What is on the screen. */
  pixels() {
    return this.#context.getImageData(0, 0, SCREEN_WIDTH, SCREEN_HEIGHT);
  }

  #do(message) {
    this.#done.push(message);
    this.#tell(message);
  }

  #open(page, again = []) {
    this.#shown = page;
    this.#done = again;
    if (this.isConnected) this.#start();
  }

  #start() {
    this.#end();
    this.#say('');
    this.#worker = this.makeWorker();
    this.#worker.onmessage = ({data}) => this.#hear(data);
    this.#worker.onerror = (event) => this.#fail(event.message || 'The player could not be loaded');
    for (const [put, bytes] of Object.entries(this.#shown.files)) this.#worker.postMessage({put, bytes});
    if (!this.scriptsOpenFiles) this.#worker.postMessage({keepFilesFromScripts: true});
    this.#tell({open: this.#shown.path});
    for (const message of this.#done) this.#tell(message);
  }

  #end() {
    clearTimeout(this.#patience);
    this.#patience = 0;
    this.#worker?.terminate();
    this.#worker = null;
  }

  #tell(message) {
    if (!this.#worker) return;
    this.#worker.postMessage(message);
    this.#patience ||= setTimeout(() => this.#offerRestart(), PATIENCE);
  }

  #hear(message) {
    clearTimeout(this.#patience);
    this.#patience = 0;
    if (message.alive) {
      if (this.#notice.dataset.waits) this.#say('');
    } else if (message.frame) {
      const {x, y, w, h, pixels} = message.frame;
      this.#context.putImageData(new ImageData(new Uint8ClampedArray(pixels.buffer), w, h), x, y);
      this.#emit('frame');
    } else if ('log' in message) {
      this.#emit('console', message.log);
    } else if ('opened' in message) {
      if (!message.opened) this.#say(`${this.#shown.path} can't be shown`);
      this.#emit('page', {opened: message.opened});
    } else if ('failed' in message) {
      this.#fail(message.failed);
    } else {
      this.#emit('message', message);
    }
  }

  #fail(why) {
    this.#end();
    this.#say(`The player has ended: ${why}`, true);
    this.#emit('failed', why);
  }

  #offerRestart() {
    this.#say('The page is busy, and may be so for ever.', true);
    this.#notice.dataset.waits = 'yes';
  }

  #say(text, mayRestart = false) {
    delete this.#notice.dataset.waits;
    this.#notice.replaceChildren(text);
    if (!mayRestart) return;
    const again = document.createElement('button');
    again.textContent = 'Start again';
    again.onclick = () => {
      this.#done = [];  // it may be what led here
      this.#start();
    };
    this.#notice.append(again);
  }

  #emit(type, detail) {
    this.dispatchEvent(new CustomEvent(type, {detail}));
  }

  #keyDown(event) {
    const key = remoteKeyOf(event);
    if (!key) return;
    event.preventDefault();
    this.key(key);
  }

  // Whole pixels of the display to each of the player's keep it sharp; where there is no space for that it shrinks.
  #fit() {
    const density = devicePixelRatio || 1;
    const space = (this.parentElement?.clientWidth || SCREEN_WIDTH) * density;
    const wanted = Number(this.getAttribute('scale'));
    const whole = wanted > 0 ? Math.floor(wanted) : Math.floor(space / SCREEN_WIDTH);
    const wastes = whole < 2 && space < 2 * SCREEN_WIDTH && density > 1 && !wanted;
    const isWhole = whole >= 1 && !wastes;
    this.#canvas.classList.toggle('whole', isWhole);
    this.#canvas.style.width = isWhole ? `${SCREEN_WIDTH * whole / density}px` : '100%';
  }
}

customElements.define('vistrel-screen', VistrelScreen);
