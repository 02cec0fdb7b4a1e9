// What the debugger's configurations make of the command line, and that package.json knows the same ones.
import * as assert from 'node:assert';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { adapterArguments } from '../src/adapter';

test('configurations of the debugger', () => {
  assert.deepStrictEqual(adapterArguments({ request: 'launch' }), ['dap']);
  assert.deepStrictEqual(adapterArguments({ request: 'attach', socket: '/tmp/s' }), ['dap', '--attach', '/tmp/s']);
  assert.throws(() => adapterArguments({ request: 'attach' }), /socket/);
  const manifest = JSON.parse(readFileSync(join(__dirname, '../../package.json'), 'utf8'));
  const { configurationAttributes, configurationSnippets } = manifest.contributes.debuggers[0];
  for (const { body } of configurationSnippets)
    for (const key of configurationAttributes[body.request].required) assert.ok(key in body, `${body.name}: ${key}`);
});
