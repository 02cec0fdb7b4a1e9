// The grammars colour the parts of a script as what they are, in script files and in page sources.
import * as assert from 'node:assert';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import * as oniguruma from 'vscode-oniguruma';
import { IGrammar, INITIAL, parseRawGrammar, Registry } from 'vscode-textmate';

const root = join(__dirname, '..', '..');

// Enough of YAML for the scripts in it: keys, and texts.
const yaml = {
  scopeName: 'source.yaml',
  patterns: [{ match: '^\\s*(?:- )?(\\w+)(:)', captures: { 1: { name: 'entity.name.tag.yaml' } } }],
  repository: {},
};

async function grammarOf(scope: string): Promise<IGrammar> {
  const wasm = readFileSync(require.resolve('vscode-oniguruma/release/onig.wasm'));
  await oniguruma.loadWASM(wasm.buffer.slice(wasm.byteOffset, wasm.byteOffset + wasm.byteLength));
  const files: Record<string, string> = {
    'source.bob': 'bob.tmLanguage.json',
    'source.bob.in-yaml': 'bob-in-yaml.tmLanguage.json',
  };
  const registry = new Registry({
    onigLib: Promise.resolve({
      createOnigScanner: (sources) => new oniguruma.OnigScanner(sources),
      createOnigString: (text) => new oniguruma.OnigString(text),
    }),
    loadGrammar: async (name) => {
      if (name === 'source.yaml') return parseRawGrammar(JSON.stringify(yaml), 'yaml.json');
      return parseRawGrammar(readFileSync(join(root, 'syntaxes', files[name]), 'utf8'), files[name]);
    },
    getInjections: (name) => (name === 'source.yaml' ? ['source.bob.in-yaml'] : []),
  });
  const grammar = await registry.loadGrammar(scope);
  assert.ok(grammar);
  return grammar;
}

// The words of the text with their innermost scopes.
async function scopes(scope: string, text: string): Promise<[string, string][]> {
  const grammar = await grammarOf(scope);
  const words: [string, string][] = [];
  let state = INITIAL;
  for (const line of text.split('\n')) {
    const result = grammar.tokenizeLine(line, state);
    for (const token of result.tokens)
      words.push([line.slice(token.startIndex, token.endIndex).trim(), token.scopes[token.scopes.length - 1]]);
    state = result.ruleStack;
  }
  return words;
}

function has(words: [string, string][], word: string, scope: string): void {
  assert.ok(
    words.some(([w, s]) => w === word && s.startsWith(scope)),
    `${word} ${scope} in ${JSON.stringify(words)}`,
  );
}

test('a script file', async () => {
  const words = await scopes(
    'source.bob',
    'define lamp.toggle(n) {  // one\n  local x = 0x1F + 2.5, s = "a\\n" + \\name;\n  if (this.on(n)) return nil;\n  /* two\n  if */ show(x);\n}',
  );
  has(words, 'toggle', 'entity.name.function');
  has(words, '// one', 'comment.line');
  has(words, '0x1F', 'constant.numeric.hex');
  has(words, '2.5', 'constant.numeric.float');
  has(words, '\\n', 'constant.character.escape');
  has(words, '\\name', 'constant.other.symbol');
  has(words, 'on', 'entity.name.function.member');
  has(words, 'return', 'keyword.control');
  has(words, 'if', 'comment.block');
  has(words, 'show', 'entity.name.function');
});

test('a script in a page source', async () => {
  const words = await scopes('source.yaml', 'page:\n  onLoad: |\n    if (x) y = nil;\n\n    z();\n  if: nil\n  - onBlur: |\n      w();\n    name: v()\n');
  has(words, 'if', 'keyword.control');
  has(words, 'z', 'entity.name.function');
  has(words, 'if', 'entity.name.tag');
  has(words, 'w', 'entity.name.function');
  has(words, 'name', 'entity.name.tag');
});
