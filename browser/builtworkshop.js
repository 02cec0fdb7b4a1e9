// The kit's module of build/web, in node.
import {readFileSync} from 'node:fs';
import {fileURLToPath} from 'node:url';
import {startWorkshop} from './playground/workshop.js';

const placeOf = (name) => new URL(`../build/web/workshop/${name}`, import.meta.url);

export async function startBuiltWorkshop() {
  const {default: startModule} = await import(placeOf('vistrel-workshop.js'));
  return startWorkshop(startModule, {wasmBinary: readFileSync(fileURLToPath(placeOf('vistrel-workshop.wasm')))});
}
