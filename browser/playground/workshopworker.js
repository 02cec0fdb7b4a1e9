// The kit in a worker. By the worker's name it is the "stage", which runs a page, or the "language", which answers an
// editor: each has files of its own, so that a script that doesn't end keeps nobody from editing.
//
// Takes {put, bytes}, bytes being null for a file that goes. The stage further takes {open}, {reload}, {key}, {type},
// {inspect} with the path of a widget or "", {timeline} with a text that its rows must have, and {pack, archive}, and answers as playerworker.js does, and
// {made}: what was said of the sources, {errors}, {stopped}, {inspected}, {timeline} and {packed}. The language takes {lsp}
// and answers {lsp}: messages of the Language Server Protocol.
import startModule from './vistrel-workshop.js';
import {asked, startWorkshop, withTexts} from './workshop.js';

const started = startWorkshop(startModule);
started.catch((error) => postMessage({failed: String(error)}));

function put(module, path, bytes) {
  const {FS} = module;
  if (bytes === null) {
    if (FS.analyzePath(path).exists) FS.unlink(path);
    return;
  }
  FS.mkdirTree(path.slice(0, path.lastIndexOf('/')) || '/');
  FS.writeFile(path, bytes);
}

// ---- the stage

let timer = 0;
let at = performance.now();

function passTime(module) {
  clearTimeout(timer);
  const spent = Math.min(Math.floor(performance.now() - at), 1000);  // a page that wasn't looked at for long goes on
  at = performance.now();
  const next = module._stagePass(spent);
  if (next >= 0) timer = setTimeout(() => guard(() => (passTime(module), tell(module))), Math.max(next, 1));
}

function tell(module) {
  const {log, stopped, errors} = asked(module, '_stageNews');
  if (log) postMessage({log});
  if (errors.length > 0) postMessage({errors});
  const [x, y, w, h, pixels] = module.HEAPU32.subarray(module._stageFrame() >> 2).subarray(0, 5);
  if (w > 0) {
    const bytes = module.HEAPU8.slice(pixels, pixels + w * h * 4);
    postMessage({frame: {x, y, w, h, pixels: bytes}}, [bytes.buffer]);
  }
  if (stopped) {
    postMessage({stopped});
    module._stageGoOn();
  }
  postMessage({alive: true});
}

function takeOfStage(module, message) {
  if ('pack' in message) {
    const {messages, packed} = asked(module, '_projectPack', message.pack, message.archive);
    return postMessage({packed: packed ? module.FS.readFile(message.archive) : null, messages});
  }
  if ('inspect' in message) return postMessage({inspected: asked(module, '_stageInspect', message.inspect)});
  if ('timeline' in message) return postMessage({timeline: asked(module, '_stageTimeline', message.timeline)});
  if ('open' in message || 'reload' in message) {
    const begun = performance.now();
    const opened = 'open' in message ? asked(module, '_stageOpen', message.open) : asked(module, '_stageReload');
    postMessage({made: opened.messages, isShown: opened.opened, spent: performance.now() - begun});
  } else {
    passTime(module);
    if ('key' in message) withTexts(module, [message.key], module._stageKey);
    if ('type' in message) withTexts(module, [message.type], module._stageType);
  }
  passTime(module);
  tell(module);
}

// ---- the language

function diagnose(module) {
  clearTimeout(timer);
  const {messages, wait} = asked(module, '_languageDiagnose');
  if (messages.length > 0) postMessage({lsp: messages});
  if (wait >= 0) timer = setTimeout(() => guard(() => diagnose(module)), wait + 1);
}

function takeOfLanguage(module, message) {
  const answers = asked(module, '_languageTake', JSON.stringify(message.lsp));
  if (answers.length > 0) postMessage({lsp: answers});
  diagnose(module);
}

function guard(what) {
  try {
    what();
  } catch (error) {
    postMessage({failed: String(error?.message ?? error)});
    close();
  }
}

onmessage = async ({data}) => {
  const module = await started;
  guard(() => {
    if ('put' in data) put(module, data.put, data.bytes);
    else if (name === 'language') takeOfLanguage(module, data);
    else takeOfStage(module, data);
  });
};
