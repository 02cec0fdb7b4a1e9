// The editor of page sources and scripts: colours, and what the language server knows.
import {autocompletion, closeBrackets, closeBracketsKeymap, completionKeymap} from '@codemirror/autocomplete';
import {defaultKeymap, history, historyKeymap} from '@codemirror/commands';
import {yaml} from '@codemirror/lang-yaml';
import {bracketMatching, foldGutter, foldKeymap, HighlightStyle, indentOnInput, indentUnit, StreamLanguage, syntaxHighlighting} from '@codemirror/language';
import {lintGutter, lintKeymap, setDiagnostics} from '@codemirror/lint';
import {highlightSelectionMatches, search, searchKeymap} from '@codemirror/search';
import {EditorState} from '@codemirror/state';
import {drawSelection, EditorView, highlightActiveLine, highlightActiveLineGutter, hoverTooltip, keymap, lineNumbers} from '@codemirror/view';
import {tags} from '@lezer/highlight';
import {uriOf} from './workers.js';

const KEYWORDS = new Set('if else while do for return break continue switch case default try catch finally throw new'.split(' '));
const CONSTANTS = new Set('this super _next nil true false'.split(' '));

const bob = StreamLanguage.define({
  name: 'bob',
  startState: () => ({inComment: false}),
  languageData: {commentTokens: {line: '//', block: {open: '/*', close: '*/'}}, closeBrackets: {brackets: ['(', '[', '{', '"']}},
  token(stream, state) {
    if (state.inComment) {
      if (stream.skipTo('*/')) stream.match('*/'), (state.inComment = false);
      else stream.skipToEnd();
      return 'comment';
    }
    if (stream.eatSpace()) return null;
    if (stream.match('//')) return stream.skipToEnd(), 'comment';
    if (stream.match('/*')) return (state.inComment = true), 'comment';
    if (stream.match(/^"(?:\\.|[^"\\])*"?/) || stream.match(/^'(?:\\.|[^'\\])*'?/)) return 'string';
    if (stream.match(/^0[xX][0-9a-fA-F]+/) || stream.match(/^\d+(\.\d*)?([eE][+-]?\d+)?/)) return 'number';
    const word = stream.match(/^[A-Za-z_]\w*/);
    if (!word) return stream.next(), 'operator';
    if (KEYWORDS.has(word[0])) return 'keyword';
    if (CONSTANTS.has(word[0])) return 'atom';
    return stream.match(/^\s*\(/, false) ? 'propertyName' : 'variableName';
  },
});

const colors = syntaxHighlighting(HighlightStyle.define([
  {tag: [tags.keyword, tags.definitionKeyword], color: '#7fc8ff'},
  {tag: [tags.propertyName, tags.definition(tags.propertyName)], color: '#9fd6c0'},
  {tag: [tags.string, tags.special(tags.string), tags.content], color: '#f0d9a0'},
  {tag: [tags.number, tags.bool, tags.atom, tags.null], color: '#f2a97e'},
  {tag: [tags.comment, tags.lineComment], color: '#8ba3b8', fontStyle: 'italic'},
  {tag: [tags.separator, tags.punctuation, tags.operator, tags.squareBracket, tags.brace], color: '#b4c4d2'},
  {tag: [tags.labelName, tags.typeName, tags.meta], color: '#d5b3f2'},
]));

const look = EditorView.theme({
  '&': {height: '100%', color: '#e8eef4', backgroundColor: '#0e1822', fontSize: '14px'},
  '.cm-scroller': {fontFamily: 'ui-monospace, SFMono-Regular, Menlo, Consolas, monospace', lineHeight: '1.5'},
  '.cm-content': {caretColor: '#f4d860'},
  '.cm-cursor': {borderLeftColor: '#f4d860', borderLeftWidth: '2px'},
  '.cm-gutters': {backgroundColor: '#0e1822', color: '#8297aa', border: 'none'},
  '.cm-activeLine, .cm-activeLineGutter': {backgroundColor: '#16232f'},
  '&.cm-focused .cm-selectionBackground, .cm-selectionBackground, ::selection': {backgroundColor: '#2f4d6b !important'},
  '.cm-matchingBracket': {backgroundColor: '#2f4d6b', outline: '1px solid #5b7fa3'},
  '.cm-selectionMatch': {backgroundColor: '#27435a'},
  '.cm-tooltip': {backgroundColor: '#1c2b39', color: '#e8eef4', border: '1px solid #3c566f', borderRadius: '6px'},
  '.cm-tooltip-autocomplete ul li[aria-selected]': {backgroundColor: '#2f5c86', color: '#fff'},
  '.cm-completionDetail': {color: '#a9bccd', fontStyle: 'normal'},
  '.cm-completionInfo, .cm-tooltip-hover .about': {maxWidth: '46ch', padding: '8px 10px', whiteSpace: 'pre-wrap', font: '14px/1.45 system-ui, sans-serif'},
  '.cm-panels': {backgroundColor: '#14202c', color: '#e8eef4'},
  '.cm-panel input, .cm-panel button': {color: '#e8eef4', backgroundColor: '#0b141d', backgroundImage: 'none', border: '1px solid #47617b'},
  '.cm-foldPlaceholder': {backgroundColor: '#27435a', border: 'none', color: '#e8eef4'},
}, {dark: true});

const KINDS = {2: 'method', 3: 'function', 5: 'property', 6: 'variable', 7: 'class', 10: 'property', 12: 'constant', 13: 'enum', 14: 'keyword', 15: 'text', 17: 'text', 20: 'enum', 21: 'constant', 25: 'type'};

/** Marks of the server's Markdown that a plain text can do without. */
const plain = (help) => (typeof help === 'string' ? help : help?.value ?? '').replace(/```\w*\n?|`|\*\*/g, '').trim();

export class Editor {
  /** @param language a Language; changed(name, text) is called after each change */
  constructor(parent, language, changed) {
    this.language = language;
    this.changed = changed;
    this.states = new Map();
    this.diagnostics = new Map();
    this.name = '';
    this.view = new EditorView({parent, state: EditorState.create({extensions: [look]})});
  }

  /** Shows a file of the project; its undo history is kept while the project is. */
  show(name, text, line = 0) {
    if (this.name !== name) {
      if (this.name) this.states.set(this.name, this.view.state);
      this.name = name;
      const kept = this.states.get(name);
      this.view.setState(kept && kept.doc.toString() === text ? kept : this.#stateOf(name, text));
      this.view.contentDOM.setAttribute('aria-label', `${name}, the source`);
      this.language.open(name, text);
      this.#mark();
    }
    if (line > 0) this.goTo(line);
  }

  goTo(line) {
    const {from} = this.view.state.doc.line(Math.min(Math.max(line, 1), this.view.state.doc.lines));
    this.view.dispatch({selection: {anchor: from}, effects: EditorView.scrollIntoView(from, {y: 'center'})});
    this.view.focus();
  }

  /** The next time, the file is shown as it is then. */
  forget(name) {
    this.states.delete(name);
    if (this.name === name) this.name = '';
  }

  forgetAll() {
    this.states.clear();
    this.diagnostics.clear();
    this.name = '';
  }

  /** What is wrong with a file, in the protocol's words. */
  takeDiagnostics(name, diagnostics) {
    this.diagnostics.set(name, diagnostics);
    if (name === this.name) this.#mark();
  }

  #mark() {
    const {state} = this.view;
    const marks = (this.diagnostics.get(this.name) ?? []).map(({range, severity, message}) => {
      const from = this.#offset(state, range.start);
      return {from, to: Math.max(from, this.#offset(state, range.end)), severity: severity === 1 ? 'error' : 'warning', message};
    });
    this.view.dispatch(setDiagnostics(state, marks));
  }

  #stateOf(name, text) {
    return EditorState.create({doc: text, extensions: [
      lineNumbers(), foldGutter(), lintGutter(), highlightActiveLineGutter(), history(), drawSelection(), indentOnInput(),
      bracketMatching(), closeBrackets(), highlightActiveLine(), highlightSelectionMatches(), search({top: true}),
      indentUnit.of('  '), EditorState.tabSize.of(2), EditorView.lineWrapping,
      EditorView.contentAttributes.of({tabindex: '0'}),
      name.endsWith('.bob') ? bob : /\.ya?ml$/.test(name) ? yaml() : [],
      autocompletion({override: [(context) => this.#complete(context)], icons: false}),
      hoverTooltip((view, at) => this.#hover(view, at)),
      keymap.of([...closeBracketsKeymap, ...defaultKeymap, ...searchKeymap, ...historyKeymap, ...foldKeymap, ...completionKeymap, ...lintKeymap]),
      colors, look,
      EditorView.updateListener.of((update) => {
        if (!update.docChanged) return;
        const now = update.state.doc.toString();
        this.language.change(name, now);
        this.changed(name, now);
      }),
    ]});
  }

  #offset(state, {line, character}) {
    if (line >= state.doc.lines) return state.doc.length;
    const {from, to} = state.doc.line(line + 1);
    return Math.min(from + character, to);
  }

  #question(state, at) {
    const line = state.doc.lineAt(at);
    return {textDocument: {uri: uriOf(this.name)}, position: {line: line.number - 1, character: at - line.from}};
  }

  async #complete(context) {
    if (!context.explicit && !context.matchBefore(/[\w.(\\#]$|: $|- $/)) return null;
    const answer = await this.language.ask('textDocument/completion', this.#question(context.state, context.pos));
    const items = answer?.items ?? answer ?? [];
    if (items.length === 0 || context.aborted) return null;
    const range = items[0].textEdit.range;
    return {
      from: this.#offset(context.state, range.start),
      to: Math.max(context.pos, this.#offset(context.state, range.end)),
      options: items.map(({label, kind, detail, documentation, textEdit}) => ({
        label, type: KINDS[kind], detail, apply: textEdit.newText, info: plain(documentation) || undefined,
      })),
      validFor: /^\w*$/,
    };
  }

  async #hover(view, at) {
    const answer = await this.language.ask('textDocument/hover', this.#question(view.state, at));
    if (!answer) return null;
    const text = plain(answer.contents);
    return {
      pos: this.#offset(view.state, answer.range.start),
      end: this.#offset(view.state, answer.range.end),
      create() {
        const dom = document.createElement('div');
        dom.className = 'about';
        dom.textContent = text;
        return {dom};
      },
    };
  }
}
