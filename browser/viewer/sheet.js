/** A style sheet for shadow roots. */
export function sheetOf(text) {
  const sheet = new CSSStyleSheet();
  sheet.replaceSync(text);
  return sheet;
}
