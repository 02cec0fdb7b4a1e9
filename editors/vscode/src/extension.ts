// The extension: a language server, a debugger and a preview, all of them the program kpg.
import * as vscode from 'vscode';
import { LanguageClient, TransportKind } from 'vscode-languageclient/node';
import { adapterArguments } from './adapter';
import { Preview } from './preview';

let client: LanguageClient | undefined;

export function kpg(): string {
  return vscode.workspace.getConfiguration('vistrel').get<string>('kpg') || 'kpg';
}

async function startServer(): Promise<void> {
  await client?.stop();
  client = new LanguageClient(
    'vistrel',
    'Vistrel',
    { command: kpg(), args: ['lsp'], transport: TransportKind.stdio },
    { documentSelector: [{ language: 'bob' }, { language: 'yaml' }] },
  );
  try {
    await client.start();
  } catch (error) {
    client = undefined;
    const answer = await vscode.window.showErrorMessage(
      `'${kpg()}' can't be started: ${error instanceof Error ? error.message : error}`,
      'Settings',
    );
    if (answer) await vscode.commands.executeCommand('workbench.action.openSettings', 'vistrel.kpg');
  }
}

class DebugAdapter implements vscode.DebugAdapterDescriptorFactory, vscode.DebugConfigurationProvider {
  createDebugAdapterDescriptor(session: vscode.DebugSession): vscode.DebugAdapterDescriptor {
    return new vscode.DebugAdapterExecutable(kpg(), adapterArguments(session.configuration));
  }

  // F5 without a configuration debugs the source that is open.
  resolveDebugConfiguration(
    _folder: vscode.WorkspaceFolder | undefined,
    configuration: vscode.DebugConfiguration,
  ): vscode.DebugConfiguration | undefined {
    if (configuration.type) return configuration;
    const editor = vscode.window.activeTextEditor;
    if (editor?.document.languageId !== 'yaml') return undefined;
    return { type: 'vistrel', request: 'launch', name: 'Debug the page', program: editor.document.fileName };
  }
}

export async function activate(context: vscode.ExtensionContext): Promise<void> {
  const adapter = new DebugAdapter();
  context.subscriptions.push(
    vscode.debug.registerDebugAdapterDescriptorFactory('vistrel', adapter),
    vscode.debug.registerDebugConfigurationProvider('vistrel', adapter),
    vscode.commands.registerCommand('vistrel.restart', startServer),
    vscode.commands.registerCommand('vistrel.preview', () => {
      const source = vscode.window.activeTextEditor?.document.fileName;
      if (source) Preview.show(source, kpg());
    }),
    vscode.workspace.onDidChangeConfiguration((change) => {
      if (change.affectsConfiguration('vistrel.kpg')) void startServer();
    }),
  );
  await startServer();
}

export async function deactivate(): Promise<void> {
  Preview.closeAll();
  await client?.stop();
}
