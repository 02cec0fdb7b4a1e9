// The pages of the guide's pictures as a project of the kit, {name: bytes}.
import {readdirSync, readFileSync} from 'node:fs';
import {join, resolve} from 'node:path';
import {fileURLToPath} from 'node:url';

const top = resolve(fileURLToPath(new URL('..', import.meta.url)));
const fonts = process.env.VISTREL_FONTS ?? '/usr/share/fonts/truetype/dejavu';

export const FONTS = Object.fromEntries(['DejaVuSans.ttf', 'DejaVuSans-Bold.ttf'].map((name) => [name, readFileSync(join(fonts, name))]));

export function guideProject() {
  const sources = join(top, 'docs/pictures');
  const artwork = (name) => readFileSync(join(top, 'demo/artwork', name));
  const names = readdirSync(sources).filter((name) => /\.(yaml|csv)$/.test(name));
  const project = `# The pages of the guide's pictures.
pages: [${names.filter((name) => name.endsWith('.yaml')).join(', ')}]
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
    'plain.png': artwork('dawn.png'),
    'dithered.png': artwork('dawn.png'),
    'dunes.png': artwork('dunes.png'),
    'vistrel.yaml': new TextEncoder().encode(project),
  };
}
