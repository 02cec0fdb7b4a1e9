export const byId = (id) => document.getElementById(id);

/** A new element with these properties, not attributes, and children. */
export function element(tag, properties = {}, ...children) {
  const made = Object.assign(document.createElement(tag), properties);
  made.append(...children);
  return made;
}
