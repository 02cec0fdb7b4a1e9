// A debugger's session as Visual Studio Code has it: each message that comes is one that the protocol's published types
// allow, with no key that they don't know.
import * as assert from 'node:assert';
import { spawn } from 'node:child_process';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { test } from 'node:test';
import * as ts from 'typescript';

const page = `page:
  type: group
  start: one
  scripts: [tools.bob]
  children:
  - type: image
    name: one
    onClick: |
      total = add(40, 2);
      total.nosuch;
`;

const tools = `define add(a, b) {
  local sum = a, parts = \\[a, b];
  sum += b;
  return sum;
}
define spin() {
  while (true)
    spinning = true;
}
`;

interface Message {
  seq: number;
  type: string;
  command?: string;
  event?: string;
  success?: boolean;
  message?: string;
  request_seq?: number;
  body?: any;
}

class Client {
  readonly messages: Message[] = [];
  private readonly process;
  private bytes = Buffer.alloc(0);
  private sent = 0;
  private heard = () => {};
  readonly ended: Promise<number | null>;

  constructor(program: string, folder: string) {
    this.process = spawn(program, ['dap'], { cwd: folder, stdio: ['pipe', 'pipe', 'ignore'] });
    this.process.stdout.on('data', (data: Buffer) => this.take(data));
    this.ended = new Promise((resolve) => this.process.on('exit', resolve));
  }

  private take(data: Buffer): void {
    this.bytes = Buffer.concat([this.bytes, data]);
    for (;;) {
      const head = /^Content-Length: (\d+)\r\n\r\n/.exec(this.bytes.toString('latin1'));
      if (!head || this.bytes.length < head[0].length + Number(head[1])) break;
      const end = head[0].length + Number(head[1]);
      this.messages.push(JSON.parse(this.bytes.subarray(head[0].length, end).toString()));
      this.bytes = this.bytes.subarray(end);
    }
    this.heard();
  }

  private async first(wanted: (message: Message) => boolean, from = 0): Promise<Message> {
    for (;;) {
      const found = this.messages.slice(from).find(wanted);
      if (found) return found;
      await new Promise<void>((resolve) => (this.heard = resolve));
    }
  }

  send(command: string, args: object = {}): number {
    const text = JSON.stringify({ seq: ++this.sent, type: 'request', command, arguments: args });
    this.process.stdin.write(`Content-Length: ${Buffer.byteLength(text)}\r\n\r\n${text}`);
    return this.sent;
  }

  async ask(command: string, args: object = {}, success = true): Promise<any> {
    const number = this.send(command, args);
    const answer = await this.first((message) => message.request_seq === number);
    assert.strictEqual(answer.success, success, `${command}: ${answer.message}`);
    return answer.body;
  }

  event(name: string, from = 0): Promise<Message> {
    return this.first((message) => message.event === name, from);
  }

  // Asks for what makes the page go on, and returns why and where it stops next.
  async goOn(command: string): Promise<[string, string, number]> {
    const from = this.messages.length;
    await this.ask(command, { threadId: 1 });
    return this.stop(from);
  }

  async stop(from: number): Promise<[string, string, number]> {
    const { body } = await this.event('stopped', from);
    await this.ask('threads');
    const { stackFrames } = await this.ask('stackTrace', { threadId: 1, startFrame: 0, levels: 20 });
    return [body.reason, stackFrames[0].name, stackFrames[0].line];
  }

  // All that the variables panel shows when everything is unfolded.
  async unfold(frameId: number): Promise<Map<string, any>> {
    const found = new Map<string, any>();
    for (const scope of (await this.ask('scopes', { frameId })).scopes)
      for (const variable of (await this.ask('variables', { variablesReference: scope.variablesReference })).variables) {
        found.set(variable.name, { ...variable, of: scope.variablesReference });
        if (variable.variablesReference)
          await this.ask('variables', { variablesReference: variable.variablesReference, start: 0, count: 10 });
      }
    return found;
  }
}

const capital = (text: string) => text[0].toUpperCase() + text.slice(1);

function typeOf(message: Message): string {
  if (message.event) return `${capital(message.event)}Event`;
  return message.success ? `${capital(message.command!)}Response` : 'ErrorResponse';
}

// What the compiler says of the messages as values of the protocol's types.
function faultsOf(messages: Message[]): string[] {
  const name = join(__dirname, '../../test/messages.ts');
  const lines = messages.map((m, n) => `const m${n}: DebugProtocol.${typeOf(m)} = ${JSON.stringify(m)};`);
  const text = `import { DebugProtocol } from '@vscode/debugprotocol';\n${lines.join('\n')}\n`;
  const options = { strict: true, skipLibCheck: true, noEmit: true, module: ts.ModuleKind.Node16, target: ts.ScriptTarget.ES2022 };
  const host = ts.createCompilerHost(options);
  const { getSourceFile, fileExists } = host;
  host.fileExists = (file) => file === name || fileExists(file);
  host.getSourceFile = (file, ...rest) =>
    file === name ? ts.createSourceFile(file, text, ts.ScriptTarget.ES2022) : getSourceFile(file, ...rest);
  return ts.getPreEmitDiagnostics(ts.createProgram([name], options, host)).map((fault) => {
    const line = fault.file && fault.start !== undefined ? fault.file.getLineAndCharacterOfPosition(fault.start).line : 0;
    return `${ts.flattenDiagnosticMessageText(fault.messageText, ' ')}\n${lines[line - 1]}`;
  });
}

test('a session of the debugger', { skip: !process.env.KPG }, async () => {
  const folder = mkdtempSync(join(tmpdir(), 'vistrel-test-'));
  writeFileSync(join(folder, 'page.yaml'), page);
  writeFileSync(join(folder, 'tools.bob'), tools);
  const client = new Client(process.env.KPG!, folder);
  const can = await client.ask('initialize', {
    clientID: 'vscode', adapterID: 'vistrel', pathFormat: 'path', linesStartAt1: true, columnsStartAt1: true,
    supportsVariableType: true, supportsVariablePaging: true, supportsRunInTerminalRequest: true, locale: 'en',
  });
  await client.event('initialized');
  client.send('launch', { type: 'vistrel', request: 'launch', program: 'page.yaml', steps: [{ key: 'Select' }] });
  const source = { name: 'tools.bob', path: join(folder, 'tools.bob') };
  await client.ask('setBreakpoints', {
    source, lines: [3], sourceModified: false, breakpoints: [{ line: 3 }, { line: 4, logMessage: 'it is {sum}' }],
  });
  const filters = can.exceptionBreakpointFilters.map((each: { filter: string }) => each.filter);
  await client.ask('setExceptionBreakpoints', { filters });
  await client.ask('configurationDone');
  assert.deepStrictEqual(await client.stop(0), ['breakpoint', 'add', 3]);

  const variables = await client.unfold(1);
  assert.deepStrictEqual(['a', 'b', 'sum'].map((name) => variables.get(name).value), ['40', '2', '40']);
  await client.ask('setVariable', { variablesReference: variables.get('sum').of, name: 'sum', value: 'a + 100' });
  await client.ask('setVariable', { variablesReference: variables.get('sum').of, name: 'sum', value: ')' }, false);
  for (const context of ['watch', 'hover', 'repl']) await client.ask('evaluate', { expression: 'sum', frameId: 1, context });
  await client.ask('evaluate', { expression: 'nosuch', frameId: 1, context: 'watch' }, false);
  assert.deepStrictEqual(await client.goOn('next'), ['step', 'add', 4]);
  assert.strictEqual((await client.goOn('stepOut'))[2], 9);
  const raised = await client.goOn('continue');
  assert.deepStrictEqual([raised[0], raised[2]], ['exception', 10]);
  await client.ask('continue', { threadId: 1 });
  await client.ask('stackTrace', { threadId: 1 }, false);
  await client.ask('frobnicate', {}, false);

  const from = client.messages.length;
  const spinning = client.send('evaluate', { expression: 'spin();', context: 'repl' });
  assert.ok(spinning);
  await client.ask('pause', { threadId: 1 });
  assert.deepStrictEqual((await client.stop(from)).slice(0, 2), ['pause', 'spin']);
  await client.ask('disconnect', { restart: false, terminateDebuggee: true });
  assert.strictEqual(await client.ended, 0);
  rmSync(folder, { recursive: true });

  const output = client.messages.filter((m) => m.event === 'output').map((m) => m.body.output).join('');
  assert.match(output, /it is 142\n/);
  client.messages.forEach((message, n) => assert.strictEqual(message.seq, n + 1));
  const known = client.messages.filter((message) => message.command !== 'frobnicate');
  assert.deepStrictEqual(faultsOf(known), []);
  assert.notDeepStrictEqual(faultsOf([{ seq: 1, type: 'event', event: 'stopped', body: { reasn: 'step' } }]), []);
});
