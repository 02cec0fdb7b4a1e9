// kpg watch as the preview uses it: a picture of a page after each save, and after each key.
//
// A key begins the page anew with all keys so far, which is what kpg does with actions: the same keys show the same
// picture, however the page has been edited in between.
import { ChildProcess, spawn } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { basename, dirname, join } from 'node:path';

export interface Shown {
  picture(png: Buffer): void;
  message(text: string): void; // what is wrong; empty when nothing is
}

export class Watch {
  private readonly folder = mkdtempSync(join(tmpdir(), 'vistrel-'));
  private readonly keys: string[] = [];
  private process: ChildProcess | undefined;

  constructor(
    private readonly program: string,
    private readonly source: string,
    private readonly shown: Shown,
  ) {
    this.start();
  }

  key(name: string): void {
    this.keys.push(name);
    this.start();
  }

  // The page as it opens.
  reset(): void {
    this.keys.length = 0;
    this.start();
  }

  close(): void {
    this.stop();
    rmSync(this.folder, { recursive: true, force: true });
  }

  private stop(): void {
    this.process?.removeAllListeners();
    this.process?.stdout?.removeAllListeners();
    this.process?.kill();
    this.process = undefined;
  }

  private start(): void {
    this.stop();
    const picture = join(this.folder, 'page.png');
    const actions = this.keys.flatMap((key) => ['--key', key]);
    const child = spawn(this.program, ['watch', basename(this.source), '-o', picture, ...actions], {
      cwd: dirname(this.source),
    });
    this.process = child;
    let rest = '';
    let messages: string[] = [];
    child.stdout.on('data', (data: Buffer) => {
      const lines = (rest + data.toString()).split('\n');
      rest = lines.pop() ?? '';
      for (const line of lines) {
        if (!/^.*page\.png: \d+ ms$/.test(line)) {
          messages.push(line);
          this.shown.message(messages.join('\n'));
          continue;
        }
        this.shown.picture(readFileSync(picture));
        this.shown.message(messages.join('\n'));
        messages = [];
      }
    });
    child.on('error', (error) => this.shown.message(`'${this.program}' can't be started: ${error.message}`));
    let complaint = '';
    child.stderr.on('data', (data: Buffer) => (complaint += data.toString()));
    child.on('exit', () => this.shown.message(complaint || 'kpg has ended'));
  }
}
