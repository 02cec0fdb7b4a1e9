// The two workers of the kit: what the editor asks (the language), and what the screen shows (the stage, which
// <vistrel-screen> starts).
import {ROOT} from './project.js';

const workerAt = (name) => new Worker(new URL('./workshopworker.js', document.baseURI), {type: 'module', name});

export const makeStage = () => workerAt('stage');

export const uriOf = (name) => `file://${ROOT}${name.split('/').map(encodeURIComponent).join('/')}`;
export const nameOf = (uri) => decodeURIComponent(uri.replace(`file://${ROOT}`, ''));

/** A language server that an editor can ask. */
export class Language {
  #worker = null;
  #last = 0;
  #waiting = new Map();
  #versions = new Map();

  /** @param publish takes a file's name and what is wrong with it, in the protocol's words */
  constructor(publish) {
    this.publish = publish;
  }

  /** Begins with other files: {full name: bytes}. */
  start(files) {
    this.#worker?.terminate();
    for (const done of this.#waiting.values()) done(null);
    this.#waiting.clear();
    this.#versions.clear();
    this.#worker = workerAt('language');
    this.#worker.onmessage = ({data}) => data.lsp?.forEach((message) => this.#hear(message));
    for (const [put, bytes] of Object.entries(files)) this.put(put, bytes);
    this.ask('initialize', {capabilities: {}});
    this.#send({method: 'initialized', params: {}});
  }

  put(path, bytes) {
    this.#worker.postMessage({put: path, bytes});
  }

  ask(method, params) {
    const id = ++this.#last;
    return new Promise((done) => {
      this.#waiting.set(id, done);
      this.#send({id, method, params});
    });
  }

  open(name, text) {
    if (this.#versions.has(name)) return this.change(name, text);
    this.#versions.set(name, 1);
    const languageId = name.endsWith('.bob') ? 'bob' : 'yaml';
    this.#send({method: 'textDocument/didOpen', params: {textDocument: {uri: uriOf(name), languageId, version: 1, text}}});
  }

  change(name, text) {
    if (!this.#versions.has(name)) return this.open(name, text);
    const version = this.#versions.get(name) + 1;
    this.#versions.set(name, version);
    this.#send({method: 'textDocument/didChange', params: {textDocument: {uri: uriOf(name), version}, contentChanges: [{text}]}});
  }

  saved(name) {
    if (this.#versions.has(name)) this.#send({method: 'textDocument/didSave', params: {textDocument: {uri: uriOf(name)}}});
  }

  savedAll() {
    for (const name of this.#versions.keys()) this.saved(name);
  }

  close(name) {
    if (this.#versions.delete(name)) this.#send({method: 'textDocument/didClose', params: {textDocument: {uri: uriOf(name)}}});
  }

  #send(message) {
    this.#worker.postMessage({lsp: {jsonrpc: '2.0', ...message}});
  }

  #hear(message) {
    if (message.method === 'textDocument/publishDiagnostics') this.publish(nameOf(message.params.uri), message.params.diagnostics);
    if (message.method || !this.#waiting.has(message.id)) return;
    this.#waiting.get(message.id)(message.result ?? null);
    this.#waiting.delete(message.id);
  }
}
