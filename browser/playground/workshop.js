// The kit's module for JavaScript: starts it, and calls what takes texts and answers JSON.
const utf8 = new TextEncoder();
const text = new TextDecoder();

export async function startWorkshop(startModule, options = {}) {
  const module = await startModule({print: () => undefined, ...options});
  module._workshopStart();
  return module;
}

/** Calls use with the places of these texts in the module's memory, where they stay until it returns. */
export function withTexts(module, values, use) {
  const places = values.map((value) => {
    const bytes = utf8.encode(value);
    const at = module._malloc(bytes.length + 1);
    module.HEAPU8.set(bytes, at);
    module.HEAPU8[at + bytes.length] = 0;
    return at;
  });
  try {
    return use(...places);
  } finally {
    places.forEach((at) => module._free(at));
  }
}

/** What the module's function of that name answers to these texts. */
export function asked(module, name, ...values) {
  const at = withTexts(module, values, module[name]);
  return JSON.parse(text.decode(module.HEAPU8.subarray(at, module.HEAPU8.indexOf(0, at))));
}
