// What the studio's models tell of the page that is shown: its widgets with their attributes, where the keys lead, and what
// happened. They are asked only while somebody looks.
import {byId, element} from './elements.js';

const REST = 200;  // milliseconds between two looks at a page that changes

function svg(tag, attributes) {
  const made = document.createElementNS('http://www.w3.org/2000/svg', tag);
  for (const [name, value] of Object.entries(attributes)) made.setAttribute(name, value);
  return made;
}

const rectangle = ([x, y, width, height], className) =>
  svg('rect', {x: x + 1, y: y + 1, width: Math.max(width - 2, 0), height: Math.max(height - 2, 0), class: className});

function arrow([x, y, toX, toY], className) {
  const angle = Math.atan2(toY - y, toX - x);
  const barb = (turn) => `${toX - 9 * Math.cos(angle + turn)} ${toY - 9 * Math.sin(angle + turn)}`;
  return svg('path', {d: `M${x} ${y}L${toX} ${toY}M${barb(0.45)}L${toX} ${toY}L${barb(-0.45)}`, class: className});
}

export class Models {
  #screen;
  #goTo;
  #chosen = '';  // the path of a widget
  #attributes = '';  // those that are shown, as JSON
  #timer = 0;

  /** @param goTo takes the place where an attribute was written, {file, line} */
  constructor(screen, goTo) {
    this.#screen = screen;
    this.#goTo = goTo;
    for (const news of ['frame', 'console']) screen.addEventListener(news, () => this.#lookSoon());
    screen.addEventListener('message', ({detail}) => {
      if (detail.inspected) this.#showInspected(detail.inspected);
      if (detail.timeline) this.#showTimeline(detail.timeline);
    });
    for (const id of ['inspector', 'timeline']) byId(id).addEventListener('toggle', () => this.look());
    byId('focus-map').onchange = () => this.look();
    byId('timeline-filter').oninput = () => this.look();
  }

  look() {
    if (byId('inspector').open) this.#screen.send({inspect: this.#chosen});
    else byId('marks').replaceChildren();
    if (byId('timeline').open) this.#screen.send({timeline: byId('timeline-filter').value});
  }

  #lookSoon() {
    this.#timer ||= setTimeout(() => ((this.#timer = 0), this.look()), REST);
  }

  #choose(path) {
    this.#chosen = this.#chosen === path ? '' : path;
    this.look();
  }

  #showInspected({widgets, focus, attributes}) {
    if (!byId('inspector').open) return;
    byId('focus-summary').textContent = focus.summary;
    this.#showWidgets(widgets);
    this.#showAttributes(attributes);
    const chosen = widgets.find(({path}) => path === this.#chosen);
    byId('marks').replaceChildren(
        ...(byId('focus-map').checked ? this.#marksOf(focus) : []), ...(chosen ? [rectangle(chosen.bounds, 'chosen')] : []));
  }

  #marksOf({stops, arrows, deadLinks}) {
    return [
      ...stops.map(({bounds, isReached}) => rectangle(bounds, isReached ? 'reached' : 'wrong')),
      ...arrows.flatMap((each) => [arrow(each, 'edge'), arrow(each, 'reached')]),
      ...deadLinks.flatMap((each) => [arrow(each, 'edge'), arrow(each, 'wrong')]),
    ];
  }

  // Rows stay as long as the widgets do, so that the keyboard stays where it is.
  #showWidgets(widgets) {
    const list = byId('widgets');
    const paths = widgets.map(({path}) => path);
    const shown = [...list.querySelectorAll('button')].map(({value}) => value);
    if (JSON.stringify(paths) !== JSON.stringify(shown))
      list.replaceChildren(...paths.map((path) =>
        element('li', {}, element('button', {type: 'button', value: path, onclick: () => this.#choose(path)}))));
    for (const [i, button] of list.querySelectorAll('button').entries()) this.#fillRow(button, widgets[i]);
  }

  #fillRow(button, {depth, label, path, bounds, hidden, focused, notSeen, why}) {
    const [x, y, width, height] = bounds;
    const said = [focused && 'has the focus', hidden && 'is hidden',
                  notSeen && `can’t be seen${why.length ? `: ${why.join('; ')}` : ''}`].filter(Boolean).join(', ');
    const text = `${label} ${x}, ${y} ${width} × ${height} ${said}`;
    button.setAttribute('aria-pressed', String(path === this.#chosen));
    if (button.textContent === text) return;
    button.style.paddingLeft = `${depth * 16 + 8}px`;
    button.className = notSeen ? 'unseen' : focused ? 'focused' : hidden ? 'hidden' : '';
    button.replaceChildren(
        element('strong', {textContent: label}), ' ', element('span', {textContent: `${x}, ${y} ${width} × ${height}`}), ' ',
        element('em', {textContent: said}));
  }

  #showAttributes(attributes) {
    if (this.#attributes === JSON.stringify(attributes)) return;
    this.#attributes = JSON.stringify(attributes);
    byId('attributes').hidden = attributes.length === 0;
    byId('attribute-rows').replaceChildren(...attributes.map(({name, value, from, place, help}) => {
      const where = element('td', {}, place ? element('button', {type: 'button', textContent: from, onclick: () => this.#goTo(place)}) : from);
      return element('tr', {title: help}, element('th', {scope: 'row', textContent: name}), element('td', {textContent: value}), where);
    }));
  }

  #showTimeline(rows) {
    const space = byId('timeline-space');
    const isAtEnd = space.scrollTop + space.clientHeight >= space.scrollHeight - 4;
    byId('timeline-rows').replaceChildren(...rows.map(({time, kind, depth, text, cost}) => {
      const what = element('td', {textContent: text});
      what.style.paddingLeft = `${depth * 12 + 8}px`;
      return element('tr', {className: kind}, element('td', {textContent: time}), element('td', {textContent: kind}), what, element('td', {textContent: cost}));
    }));
    if (isAtEnd) space.scrollTop = space.scrollHeight;
  }
}
