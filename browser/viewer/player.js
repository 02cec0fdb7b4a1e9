// The player for JavaScript: one page in an engine of its own. Runs wherever WebAssembly does; a page that is shown
// runs in a worker (playerworker.js), since a script may take its time.

/** The keys of the remote control, by the names that Player.key takes. */
export const KEYS = [
  'Up', 'Down', 'Left', 'Right', 'Select', 'Clear', 'Backspace', 'UpLeft', 'UpRight', 'DownLeft', 'DownRight', 'S',
  '0', '1', '2', '3', '4', '5', '6', '7', '8', '9',
];

export const SCREEN_WIDTH = 720;
export const SCREEN_HEIGHT = 480;

// Scripts print bytes of this encoding.
const printed = new TextDecoder('windows-1252');
const utf8 = new TextEncoder();

export class Player {
  /**
   * @param startModule what vistrel-player.js exports
   * @param {object} [options] of the module: fetchFile(path), which answers a file's bytes as a Uint8Array at once, or
   *   null where there is none; wasmBinary, for node
   */
  static async start(startModule, options = {}) {
    const player = new Player(await startModule(options));
    if (!player.module._playerStart()) throw new Error('There is not enough memory for the player');
    return player;
  }

  /** Use start. */
  constructor(module) {
    this.module = module;
  }

  /** Puts a file into memory, where it is found before any that could be fetched. Its name is a full one: /guide.kpg. */
  put(path, bytes) {
    const at = this.#withText(path, (name) => this.module._playerPut(name, bytes.length));
    this.module.HEAPU8.set(bytes, at);
  }

  /** From here on scripts open no files; the player itself still does. */
  keepFilesFromScripts() {
    this.module._playerKeepFilesFromScripts();
  }

  /** Loads a page by its full name; false when that fails, which the log explains. */
  open(path) {
    return Boolean(this.#withText(path, (name) => this.module._playerOpen(name)));
  }

  /** Presses a key of KEYS; false for any other name. */
  key(name) {
    return Boolean(this.#withText(name, (text) => this.module._playerKey(text)));
  }

  /** Types a line into the console, which runs it as a script. */
  type(line) {
    this.#withText(line, (text) => this.module._playerType(text));
  }

  /**
   * Does what is due at that time, in milliseconds since the start, for at most about `budget` milliseconds. Answers
   * when to call it again: 0 for at once, milliseconds until the next timer, or -1 for not before something is done.
   */
  run(now, budget = Infinity) {
    return this.module._playerRun(now, budget);
  }

  /** What has changed on the screen since the last call: {x, y, w, h, pixels}, as bytes R G B A; null for nothing. */
  frame() {
    const at = this.module._playerFrame() >> 2;
    const [x, y, w, h, pixels] = this.module.HEAPU32.subarray(at, at + 5);
    if (w === 0) return null;
    return {x, y, w, h, pixels: this.module.HEAPU8.slice(pixels, pixels + w * h * 4)};
  }

  /** What the console has shown since the last call. */
  log() {
    const bytes = this.module.HEAPU8;
    const begin = this.module._playerLog();
    return printed.decode(this.module.HEAPU8.slice(begin, bytes.indexOf(0, begin))).replaceAll('\r', '');
  }

  #withText(text, use) {
    const bytes = utf8.encode(text);
    const at = this.module._malloc(bytes.length + 1);
    this.module.HEAPU8.set(bytes, at);
    this.module.HEAPU8[at + bytes.length] = 0;
    try {
      return use(at);
    } finally {
      this.module._free(at);
    }
  }
}
