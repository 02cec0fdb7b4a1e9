// Runs a page for <vistrel-screen>. Takes {put, bytes}, {keepFilesFromScripts}, {open}, {key} and {type}; answers
// {opened}, {frame}, {log} and, after each of its steps, {alive}; {failed} when it can't go on.
import startModule from './vistrel-player.js';
import {Player} from './player.js';

const BUDGET = 12;  // milliseconds; then whoever waits for this worker gets a turn

// Names that begin at the root are those of the page's own server. A worker may wait for an answer.
function fetchFile(path) {
  const request = new XMLHttpRequest();
  request.open('GET', path.split('/').map(encodeURIComponent).join('/'), false);
  request.responseType = 'arraybuffer';
  try {
    request.send();
  } catch {
    return null;
  }
  return request.status === 200 ? new Uint8Array(request.response) : null;
}

const started = performance.now();
const player = Player.start(startModule, {fetchFile});
let timer = 0;

function run(player) {
  clearTimeout(timer);
  const next = player.run(performance.now() - started, BUDGET);
  const log = player.log();
  if (log) postMessage({log});
  const frame = player.frame();
  if (frame) postMessage({frame}, [frame.pixels.buffer]);
  postMessage({alive: true});
  if (next >= 0) timer = setTimeout(() => guard(run, player), next);
}

function guard(what, ...values) {
  try {
    what(...values);
  } catch (error) {
    postMessage({failed: String(error.message ?? error)});
    close();
  }
}

function take(player, message) {
  if ('put' in message) return player.put(message.put, message.bytes);
  if (message.keepFilesFromScripts) return player.keepFilesFromScripts();
  if ('open' in message) postMessage({opened: player.open(message.open)});
  if ('key' in message) player.key(message.key);
  if ('type' in message) player.type(message.type);
  run(player);
}

onmessage = ({data}) => player.then((p) => guard(take, p, data), (error) => postMessage({failed: String(error)}));
