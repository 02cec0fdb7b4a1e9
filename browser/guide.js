// Makes the guide: the project's documents as HTML, with the player in place of the pictures of pages.
//
// A picture that lies beside the source of its page gets a button that puts the page itself there. The kit's module
// builds those pages, as it does in a browser.
import {unzipSync} from 'fflate';
import {Marked} from 'marked';
import {gfmHeadingId} from 'marked-gfm-heading-id';
import {cpSync, existsSync, mkdirSync, readFileSync, writeFileSync} from 'node:fs';
import {dirname, join, resolve} from 'node:path';
import {fileURLToPath} from 'node:url';
import {startBuiltWorkshop} from './builtworkshop.js';
import {guideProject} from './guideproject.js';
import {asked} from './playground/workshop.js';

const here = fileURLToPath(new URL('.', import.meta.url));
const top = resolve(here, '..');

// In the order in which somebody would read them.
const DOCUMENTS = [
  ['index', 'README.md', 'Vistrel'],
  ['tutorial', 'docs/tutorial.md', 'A settings application in an hour'],
  ['authoring', 'docs/authoring.md', 'Authoring pages'],
  ['bob', 'docs/bob.md', 'The script language'],
  ['editors', 'docs/editors.md', 'Editors'],
  ['studio', 'docs/studio.md', 'How the studio is built'],
  ['browser', 'docs/browser.md', 'In the browser'],
  ['hosts', 'docs/hosts.md', 'Hosts'],
  ['architecture', 'docs/architecture.md', 'Architecture'],
  ['performance', 'docs/performance.md', 'Performance'],
  ['robustness', 'docs/robustness.md', 'What holds it together'],
];

// The pages of the project, compiled, with all that they need: {name: bytes}.
async function compiledPages() {
  const module = await startBuiltWorkshop();
  module.FS.mkdir('/guide');
  for (const [name, bytes] of Object.entries(guideProject())) module.FS.writeFile(`/guide/${name}`, bytes);
  const answer = asked(module, '_projectPack', '/guide/vistrel.yaml', '/guide.zip');
  if (!answer.packed) throw new Error(`the guide's pages: ${answer.messages.map(({text}) => text).join('\n')}`);
  return unzipSync(module.FS.readFile('/guide.zip'));
}

// The actions at the head of a page's source, "# --key Down --key 1".
function keysOf(source) {
  const [first] = readFileSync(source, 'utf8').split('\n', 1);
  return first.startsWith('# --') ? [...first.matchAll(/--key (\S+)/g)].map((match) => match[1]) : [];
}

const escaped = (text) => text.replace(/[&<>"]/g, (c) => ({'&': '&amp;', '<': '&lt;', '>': '&gt;', '"': '&quot;'})[c]);

// A name in a document, as the guide has it: documents lie side by side, and what isn't among them is no link.
function placeOf(document, href) {
  if (/^[a-z]+:|^#/.test(href)) return href;
  const [path, anchor] = href.split('#');
  const file = join(dirname(document), path);
  const known = DOCUMENTS.find(([, from]) => from === file);
  if (known) return `${known[0]}.html${anchor ? `#${anchor}` : ''}`;
  return file.startsWith('docs/pictures/') ? file.slice('docs/'.length) : null;
}

function htmlOf(document, pages, copyPicture) {
  const marked = new Marked(gfmHeadingId());
  marked.use({
    renderer: {
      image({href, text}) {
        const place = placeOf(document, href);
        if (!place) return escaped(text);
        copyPicture(place);
        const picture = `<img src="${place}" alt="${escaped(text)}" loading="lazy">`;
        const source = join(top, 'docs', place.replace(/\.png$/, '.yaml'));
        const page = place.replace(/^pictures\/(.*)\.png$/, '$1.kpg');
        if (!existsSync(source) || !pages[page]) return picture;
        return `<span class="page" data-page="pages/${page}" data-keys="${keysOf(source).join(' ')}">${picture}<button type="button">Try it</button></span>`;
      },
      link({href, tokens}) {
        const place = placeOf(document, href);
        const inside = this.parser.parseInline(tokens);
        return place ? `<a href="${escaped(place)}">${inside}</a>` : inside;
      },
      table(token) {
        const one = (cell, tag) => `<${tag}>${this.parser.parseInline(cell.tokens)}</${tag}>`;
        const row = (cells, tag) => `<tr>${cells.map((cell) => one(cell, cell.text ? tag : 'td')).join('')}</tr>`;
        return `<div class="wide" tabindex="0" role="group" aria-label="Table"><table><thead>${row(token.header, 'th')}</thead><tbody>${token.rows.map((cells) => row(cells, 'td')).join('')}</tbody></table></div>`;
      },
      code({text}) {
        return `<pre tabindex="0"><code>${escaped(text)}</code></pre>`;
      },
    },
  });
  return marked.parse(readFileSync(join(top, document), 'utf8'));
}

export async function makeGuide(out) {
  mkdirSync(join(out, 'pictures'), {recursive: true});
  const pages = await compiledPages();
  for (const [name, bytes] of Object.entries(pages)) {
    mkdirSync(dirname(join(out, 'pages', name)), {recursive: true});
    writeFileSync(join(out, 'pages', name), bytes);
  }
  cpSync(join(top, 'build/web/viewer'), join(out, 'viewer'), {recursive: true});
  for (const name of ['guide.css', 'guide.js']) cpSync(join(here, 'guide', name), join(out, name));
  const copyPicture = (place) => cpSync(join(top, 'docs', place), join(out, place));
  const template = readFileSync(join(here, 'guide/guide.html'), 'utf8');
  for (const [name, document, title] of DOCUMENTS) {
    const links = DOCUMENTS.map(([to, , text]) => `<li><a href="${to}.html"${to === name ? ' aria-current="page"' : ''}>${escaped(text)}</a></li>`).join('\n');
    const html = template.replace('@TITLE@', escaped(title)).replace('@LINKS@', () => links).replace('@TEXT@', () => htmlOf(document, pages, copyPicture));
    writeFileSync(join(out, `${name}.html`), html);
  }
}
