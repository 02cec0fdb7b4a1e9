// A panel beside a page source that shows the page, and sends it the keys of the remote control.
import { basename } from 'node:path';
import * as vscode from 'vscode';
import { panelHtml } from './panelhtml';
import { Watch } from './watch';

export class Preview {
  private static readonly open = new Map<string, Preview>();

  static show(source: string, program: string): void {
    const known = Preview.open.get(source);
    if (known) known.panel.reveal();
    else Preview.open.set(source, new Preview(source, program));
  }

  static closeAll(): void {
    for (const preview of [...Preview.open.values()]) preview.panel.dispose();
  }

  private readonly panel: vscode.WebviewPanel;

  private constructor(source: string, program: string) {
    this.panel = vscode.window.createWebviewPanel(
      'vistrel.preview',
      basename(source),
      { viewColumn: vscode.ViewColumn.Beside, preserveFocus: true },
      { enableScripts: true, retainContextWhenHidden: true },
    );
    this.panel.webview.html = panelHtml();
    const post = (message: object) => void this.panel.webview.postMessage(message);
    const watch = new Watch(program, source, {
      picture: (png) => post({ picture: `data:image/png;base64,${png.toString('base64')}` }),
      message: (text) => post({ text }),
    });
    this.panel.webview.onDidReceiveMessage((message: { key?: string; reset?: boolean }) => {
      if (message.reset) watch.reset();
      else if (message.key) watch.key(message.key);
    });
    this.panel.onDidDispose(() => {
      watch.close();
      Preview.open.delete(source);
    });
  }
}
