// <vistrel-remote>: the remote control as buttons. Each press is an event "remotekey" with the key's name as its detail;
// a button that is held repeats, as keys of a keyboard do. The custom properties --vistrel-key and --vistrel-gap are the
// least height of a button, 44px unless set, and what lies between two.

import {sheetOf} from './sheet.js';

const FIRST_REPEAT = 400, REPEAT = 90;  // milliseconds

const PAD = [
  ['UpLeft', 'Up and left', '↖'], ['Up', 'Up', '▲'], ['UpRight', 'Up and right', '↗'],
  ['Left', 'Left', '◀'], ['Select', 'OK, select', 'OK'], ['Right', 'Right', '▶'],
  ['DownLeft', 'Down and left', '↙'], ['Down', 'Down', '▼'], ['DownRight', 'Down and right', '↘'],
  ['Backspace', 'Back', 'Back'], ['S', 'Letter S', 'S'], ['Clear', 'Clear', 'Clear'],
];
const DIGITS = ['1', '2', '3', '4', '5', '6', '7', '8', '9', null, '0', null];

const STYLE = `
  :host { display: inline-flex; flex-wrap: wrap; gap: 14px; justify-content: center; user-select: none; -webkit-user-select: none; }
  div { display: grid; grid-template-columns: repeat(3, minmax(44px, 52px)); gap: var(--vistrel-gap, 6px); align-content: start; }
  button { font: 600 15px/1 system-ui, sans-serif; min-height: var(--vistrel-key, 44px); padding: 0 2px; border-radius: 10px; cursor: pointer;
    color: var(--vistrel-ink, #e8eef4); background: var(--vistrel-button, #2a3b4d); border: 1px solid var(--vistrel-edge, #47617b);
    touch-action: manipulation; }
  button:hover { background: var(--vistrel-hover, #34495f); }
  button:active { transform: translateY(1px); background: var(--vistrel-accent, #f4d860); color: #14202c; }
  button:focus-visible { outline: 3px solid var(--vistrel-accent, #f4d860); outline-offset: 2px; }
  .corner { font-weight: 400; opacity: .85; }
  .select { border-radius: 50%; background: var(--vistrel-accent, #f4d860); color: #14202c; }
  .select:hover { background: var(--vistrel-accent, #f4d860); }
`;

class Remote extends HTMLElement {
  #repeat = 0;

  constructor() {
    super();
    const root = this.attachShadow({mode: 'open', delegatesFocus: true});
    root.adoptedStyleSheets = [sheetOf(STYLE)];
    root.append(
        this.#group('Directions', PAD.map(([key, label, text]) => this.#button(key, label, text))),
        this.#group('Digits', DIGITS.map((digit) => digit ? this.#button(digit, digit, digit) : document.createElement('span'))));
  }

  connectedCallback() {
    this.role = 'group';
    this.ariaLabel ??= 'Remote control';
  }

  disconnectedCallback() {
    this.#release();
  }

  #group(label, parts) {
    const group = document.createElement('div');
    group.role = 'group';
    group.ariaLabel = label;
    group.append(...parts);
    return group;
  }

  #button(key, label, text) {
    const button = document.createElement('button');
    button.type = 'button';
    button.textContent = text;
    button.ariaLabel = label;
    if (key === 'Select') button.className = 'select';
    if (key.length > 5 && /^(Up|Down)/.test(key)) button.className = 'corner';
    const press = () => this.dispatchEvent(new CustomEvent('remotekey', {detail: key, bubbles: true, composed: true}));
    button.addEventListener('pointerdown', (event) => {
      if (event.button !== 0) return;
      press();
      this.#release();
      this.#repeat = setTimeout(() => (this.#repeat = setInterval(press, REPEAT)), FIRST_REPEAT);
    });
    for (const end of ['pointerup', 'pointerleave', 'pointercancel']) button.addEventListener(end, () => this.#release());
    // Of the keyboard, or of what reads the screen aloud: a pointer's click has pressed already.
    button.addEventListener('click', (event) => event.detail === 0 && press());
    button.addEventListener('contextmenu', (event) => event.preventDefault());
    return button;
  }

  #release() {
    clearTimeout(this.#repeat);
    clearInterval(this.#repeat);
  }
}

customElements.define('vistrel-remote', Remote);
