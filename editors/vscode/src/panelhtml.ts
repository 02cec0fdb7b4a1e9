// The panel's page: the picture, a row of keys, and what is wrong. It takes the keyboard while it has the focus.
import { randomBytes } from 'node:crypto';

// What the keyboard's keys are called by kpg, where that isn't the same.
export const keyNames: Record<string, string> = {
  ArrowUp: 'Up',
  ArrowDown: 'Down',
  ArrowLeft: 'Left',
  ArrowRight: 'Right',
  Enter: 'Select',
  Delete: 'Clear',
  Backspace: 'Backspace',
};
for (const digit of '0123456789') keyNames[digit] = digit;

const buttons = ['Up', 'Down', 'Left', 'Right', 'Select', 'Clear', ...'0123456789'];

export function panelHtml(): string {
  const nonce = randomBytes(16).toString('hex');
  const keys = buttons.map((key) => `<button data-key="${key}">${key}</button>`).join('');
  return `<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy"
  content="default-src 'none'; img-src data:; style-src 'nonce-${nonce}'; script-src 'nonce-${nonce}'">
<style nonce="${nonce}">
  body { padding: 8px; }
  img { display: block; width: 100%; max-width: 720px; }
  button { margin: 4px 4px 0 0; color: var(--vscode-button-foreground); background: var(--vscode-button-background);
           border: none; padding: 4px 8px; }
  pre { white-space: pre-wrap; color: var(--vscode-errorForeground); }
</style>
</head>
<body tabindex="0">
<img id="picture" alt="The page">
<div>${keys}<button id="reset">Begin anew</button></div>
<pre id="text"></pre>
<script nonce="${nonce}">
  const api = acquireVsCodeApi(), names = ${JSON.stringify(keyNames)};
  for (const button of document.querySelectorAll('[data-key]'))
    button.addEventListener('click', () => api.postMessage({ key: button.dataset.key }));
  document.getElementById('reset').addEventListener('click', () => api.postMessage({ reset: true }));
  document.addEventListener('keydown', (event) => {
    const key = names[event.key];
    if (!key || event.target.tagName === 'BUTTON' && event.key === 'Enter') return;
    event.preventDefault();
    api.postMessage({ key });
  });
  window.addEventListener('message', ({ data }) => {
    if (data.picture) document.getElementById('picture').src = data.picture;
    if (data.text !== undefined) document.getElementById('text').textContent = data.text;
  });
</script>
</body>
</html>`;
}
