// The pages of the guide's pictures as a project of the kit, {name: bytes}.
import {readdirSync, readFileSync} from 'node:fs';
import {join, resolve} from 'node:path';
import {fileURLToPath} from 'node:url';

const top = resolve(fileURLToPath(new URL('..', import.meta.url)));
const fonts = process.env.VISTREL_FONTS ?? '/usr/share/fonts/truetype/dejavu';

export const FONTS = Object.fromEntries(['DejaVuSans.ttf', 'DejaVuSans-Bold.ttf'].map((name) => [name, readFileSync(join(fonts, name))]));

// Where the menu of one of them leads.
const elsewhere = (title) => new TextEncoder().encode(`flags: 16bit
page:
  type: group
  bgColor: "#204060"
  textStyles:
    - {name: title, font: DejaVuSans.ttf, size: 40, color: white}
  children:
    - {type: text, x: 60, y: 200, width: 600, height: 80, textStyle: title, align: center, value: ${title}}
`);

export function guideProject() {
  const sources = join(top, 'docs/pictures');
  const artwork = (name) => readFileSync(join(top, 'demo/artwork', name));
  const names = readdirSync(sources).filter((name) => /\.(yaml|csv)$/.test(name));
  const project = `# The pages of the guide's pictures.
pages: [${names.filter((name) => name.endsWith('.yaml')).join(', ')}, guide.yaml, settings.yaml]
tables:
  standard.clut: standard
  plain.clut: {pictures: [plain.png], colors: 14}
pictures:
  - {files: plain.png, table: plain.clut}
  - {files: dithered.png, table: plain.clut, dither: yes}
  - dunes.png
`;
  return {
    ...Object.fromEntries(names.map((name) => [name, readFileSync(join(sources, name))])),
    ...FONTS,
    'guide.yaml': elsewhere('The guide'),
    'settings.yaml': elsewhere('The settings'),
    'plain.png': artwork('dawn.png'),
    'dithered.png': artwork('dawn.png'),
    'dunes.png': artwork('dunes.png'),
    'vistrel.yaml': new TextEncoder().encode(project),
  };
}
