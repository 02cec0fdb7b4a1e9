// A static server for a folder, on the loopback only: what `./web` and the tests open. Any other server does as well.
import {spawn} from 'node:child_process';
import {createReadStream, statSync} from 'node:fs';
import {createServer} from 'node:http';
import {extname, join, resolve, sep} from 'node:path';
import {pathToFileURL} from 'node:url';

const KINDS = {
  '.html': 'text/html; charset=utf-8', '.js': 'text/javascript; charset=utf-8', '.css': 'text/css; charset=utf-8',
  '.json': 'application/json', '.webmanifest': 'application/manifest+json', '.svg': 'image/svg+xml',
  '.png': 'image/png', '.wasm': 'application/wasm',
};

/**
 * Serves folders by the beginnings of names: {'/': folder, '/demo/': another}. Answers the server, which listens.
 * Port 0 is any that is free.
 */
export function serve(folders, port = 0) {
  const fileOf = (name) => {
    const mounts = Object.keys(folders).filter((mount) => name.startsWith(mount));
    const mount = mounts.sort((a, b) => b.length - a.length)[0];
    if (!mount) return null;
    const folder = resolve(folders[mount]);
    const file = join(folder, name.slice(mount.length));
    return file === folder || file.startsWith(folder + sep) ? file : null;
  };
  const server = createServer((request, response) => {
    try {
      let file = fileOf(decodeURIComponent(new URL(request.url, 'http://localhost').pathname));
      if (file && statSync(file).isDirectory()) file = join(file, 'index.html');
      const {size} = statSync(file);
      const kind = KINDS[extname(file)] ?? 'application/octet-stream';
      response.writeHead(200, {'Content-Type': kind, 'Content-Length': size, 'Cache-Control': 'no-cache'});
      if (request.method === 'HEAD') response.end();
      else createReadStream(file).pipe(response);
    } catch {
      response.writeHead(404).end();
    }
  });
  return new Promise((done, fail) => server.once('error', fail).listen(port, '127.0.0.1', () => done(server)));
}

export const addressOf = (server) => `http://127.0.0.1:${server.address().port}/`;

if (process.argv[1] && import.meta.url === pathToFileURL(process.argv[1]).href) {
  const server = await serve({'/': process.argv[2] ?? '.'}, Number(process.argv[3] ?? 0));
  console.log(addressOf(server));
  if (process.argv[4] === '--open') spawn('xdg-open', [addressOf(server)], {stdio: 'ignore'}).on('error', () => undefined);
}
