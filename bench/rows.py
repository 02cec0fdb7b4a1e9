"""What bench/report and bench/check measure: one line a row. A new row goes into ROWS or GROWTH, and nothing else changes.

A row names a program of the benchmarks, a benchmark in it and its peer, which by custom is called after it: "grey" with
the arguments 0/8 is the benchmark grey/0/8 and its peer FreeType's grey/freetype/0/8. Programs that aren't written with
Google Benchmark have a function here that runs them and says the times.
"""
import json
import math
import os
import re
import resource
import shutil
import statistics
import subprocess
import tempfile
from dataclasses import dataclass, field
from typing import Callable, Optional

UNITS = {'ns': 1e-9, 'us': 1e-6, 'ms': 1e-3, 's': 1.0}

ALIKE = 0.15  # by how much the ink of two pictures of the same may differ


def google(program, names, repetitions, seconds, build):
    """Median processor time in seconds of each benchmark in names, run in turns by one process; and what it has inked."""
    wanted = '^(' + '|'.join(re.escape(name) for name in names) + ')(/iterations:[0-9]+)?$'
    with tempfile.NamedTemporaryFile(suffix='.json') as out:  # the system's own log goes to the standard output
        subprocess.run([os.path.join(build, 'bench', program), '--benchmark_filter=' + wanted,
                        '--benchmark_out=' + out.name, '--benchmark_out_format=json',
                        f'--benchmark_repetitions={repetitions}', f'--benchmark_min_time={seconds}',
                        '--benchmark_enable_random_interleaving=' + ('true' if repetitions > 1 else 'false')],
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
        said = out.read()
    runs = json.loads(said)['benchmarks'] if said else []  # nothing is said of no benchmark
    times, ink = {}, {}
    for run in runs:
        if run.get('error_occurred'):
            raise RuntimeError(f"{program}: {run['name']}: {run['error_message']}")
        if run['run_type'] == 'iteration':
            name = re.sub('/iterations:[0-9]+', '', run['run_name'])
            times.setdefault(name, []).append(run['cpu_time'] * UNITS[run['time_unit']])
            ink[name] = run.get('inked')
    missing = [name for name in names if name not in times]
    if missing:
        raise RuntimeError(f'{program} has no ' + ', '.join(missing))
    return {name: statistics.median(values) for name, values in times.items()}, ink


@dataclass
class Row:
    """Work beside a peer's: one ratio for each of cases, an argument of the benchmark and what it is called."""
    title: str
    program: str
    name: str
    peer: str  # its name in the program
    peers_name: str
    aim: float | tuple  # of every case, or one for each
    cases: dict = field(default_factory=lambda: {'': ''})
    peer_has_cases: bool = True
    aim_of_mean: Optional[float] = None  # of the cases' geometric mean, if it has one of its own

    def ours(self, case):
        return self.name + ('/' + case if case else '')

    def peers(self, case):
        return self.name + '/' + self.peer + ('/' + case if case and self.peer_has_cases else '')

    def measure(self, build, repetitions=5, seconds=0.1):
        """Label to our time and the peer's."""
        names = {self.ours(case) for case in self.cases} | {self.peers(case) for case in self.cases}
        times, ink = google(self.program, sorted(names), repetitions, seconds, build)
        for case in self.cases:
            ours, peers = ink[self.ours(case)], ink[self.peers(case)]
            if ours is None and peers is None:
                continue
            if not ours or not peers or abs(ours - peers) > ALIKE * peers:
                raise RuntimeError(f'{self.ours(case)} and its peer draw {ours} and {peers} pixels')
        return {label: (times[self.ours(case)], times[self.peers(case)]) for case, label in self.cases.items()}

    def measure_ours(self, build):
        """Label to time, short."""
        times, _ = google(self.program, sorted(self.ours(case) for case in self.cases), 1, 0.05, build)
        return {label: times[self.ours(case)] for case, label in self.cases.items()}


@dataclass
class OwnRow:
    """The same by a function from a build to label to (our time, the peer's or None)."""
    title: str
    peers_name: str
    aim: float  # of every case: a ratio, or seconds without a peer
    run: Callable
    aim_of_mean: Optional[float] = None

    def measure(self, build):
        return self.run(build)

    def measure_ours(self, build):
        return {label: times[0] for label, times in self.run(build).items()}


@dataclass
class Growth:
    """The same work once, ten and a hundred times: three benchmarks of a program."""
    area: str  # whose curves share a plot, at most eight
    title: str
    work: str  # what there is more of
    program: str
    name: str  # of the benchmark, whose argument is how much
    amounts: tuple
    remark: Optional[str] = None  # why it grows faster than its work, if it does
    of: Optional[str] = None  # the title of the row in ROWS whose growth it is, if that is another

    def measure(self, build, repetitions=3, seconds=0.03):
        """Seconds for each of the amounts."""
        names = [f'{self.name}/{amount}' for amount in self.amounts]
        times, _ = google(self.program, names, repetitions, seconds, build)
        return [times[name] for name in names]

    def measure_ours(self, build):
        return costs_and_growth(self, self.measure(build, 1, 0.02))


@dataclass
class OwnGrowth:
    """The same by a function from a build and the amounts to seconds for each."""
    area: str
    title: str
    work: str
    run: Callable
    amounts: tuple
    remark: Optional[str] = None
    of: Optional[str] = None

    def measure(self, build):
        return self.run(build, self.amounts)

    def measure_ours(self, build):
        return costs_and_growth(self, self.measure(build))


GROWS = 'growth'  # the label of a figure that is no time


def costs_and_growth(row, times):
    """Label to time at the largest amount; and how much faster than the work the cost has grown."""
    return {f'{row.amounts[2]:,} {row.work}': times[2], GROWS: times[2] / times[0] / 100}


def growths_of(title):
    """The rows of GROWTH that show how the row of that title grows."""
    return [growth for growth in GROWTH if (growth.of or growth.title) == title]


def cases(*pairs):
    return dict(pairs)


def same(*names):
    return {name: name for name in names}


def bob_bench(*names):
    """For an OwnRow: bench/bob_bench runs both sides itself, alternately."""
    def run(build):
        command = [os.path.join(build, 'bench/bob_bench'), *names]
        output = subprocess.run(command, stdout=subprocess.PIPE, check=True, text=True).stdout
        found = re.findall(r'^(\S+) +bob +([0-9.]+) ms +lua +([0-9.]+) ms', output, re.MULTILINE)
        if missing := set(names) - {name for name, _, _ in found}:
            raise RuntimeError('bob_bench has no ' + ', '.join(sorted(missing)))
        return {name: (float(ours) / 1e3, float(lua) / 1e3) for name, ours, lua in found}
    return run


def processor_seconds(command):
    """Of a whole process, user and system."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime


def squared_error(exact, shown):
    return sum((a - b) ** 2 for a, b in zip(exact, shown))


def rgb_of_kpx(kpx, clut, pixels):
    """What kpg image has made, as bytes of red, green and blue."""
    def unit(value):
        return min(max(value, 0.0), 1.0)

    colors = []
    for at in range(1, len(clut), 4):  # a count, then luma, two chromas and nothing for each
        y, cr, cb = (clut[at] - 16) / 219, (clut[at + 1] - 128) / 224, (clut[at + 2] - 128) / 224
        channels = unit(y + 1.4 * cr), unit(y - 0.714 * cr - 0.344 * cb), unit(y + 1.772 * cb)
        colors.append(bytes(int(value * 255 + 0.5) for value in channels))
    return b''.join(colors[index] for index in kpx[-pixels:])


def make_photograph(path, size):
    """Soft shapes of many colours under a little noise, as photographs have them."""
    magick = shutil.which('convert')
    if not magick:
        raise RuntimeError('ImageMagick is not installed')
    subprocess.run([magick, '-seed', '3', '-size', size, 'plasma:tan-steelblue', '-blur', '0x2', '-attenuate', '0.2',
                    '+noise', 'Gaussian', '-depth', '8', 'png24:' + path], check=True)


def picture_for_player(build, runs=9):
    """For an OwnRow: whole processes that make at most 240 colours of a 720 x 480 picture, alternately. Both read a PNG and
    write without compressing. Ours must not miss more of the picture than the peer, whose tree of four levels is its fastest
    that misses no more than its own choice of levels does."""
    magick = shutil.which('convert')
    kpg = os.path.abspath(os.path.join(build, 'src/kpg/kpg'))
    pixels = 720 * 480
    with tempfile.TemporaryDirectory() as folder:
        def path(name):
            return os.path.join(folder, name)

        def rgb(name):
            return subprocess.run([magick, path(name), '-depth', '8', 'rgb:-'], stdout=subprocess.PIPE, check=True).stdout

        make_photograph(path('photograph.png'), '720x480')
        ours = [kpg, 'image', path('photograph.png'), '-o', path('ours.kpx')]
        peers = [magick, '-limit', 'thread', '1', path('photograph.png'), '-dither', 'None', '-treedepth', '4',
                 '-colors', '240', 'bmp3:' + path('peers.bmp')]
        times = [(processor_seconds(ours), processor_seconds(peers)) for _ in range(runs)]
        exact = rgb('photograph.png')
        with open(path('ours.kpx'), 'rb') as kpx, open(path('ours.clut'), 'rb') as clut:
            error = squared_error(exact, rgb_of_kpx(kpx.read(), clut.read(), pixels))
        if error > squared_error(exact, rgb('peers.bmp')):
            raise RuntimeError('kpg image misses more of the picture than its peer')
    return {'': tuple(statistics.median(column) for column in zip(*times))}


def kpg_processes(build, runs=41):
    """For an OwnRow: whole processes of kpg on the demo, the guide's, each the median of runs."""
    kpg = os.path.abspath(os.path.join(build, 'src/kpg/kpg'))
    demo = os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', 'demo')
    with tempfile.TemporaryDirectory() as folder:
        project = os.path.join(folder, 'demo')
        shutil.copytree(demo, project)
        page = os.path.join(project, 'guide.yaml')
        subprocess.run([kpg, 'build', project], stdout=subprocess.DEVNULL, check=True)
        commands = {
            'a picture': [kpg, 'shot', os.path.join(project, 'build', 'guide.kpg'), '-o', os.path.join(folder, 'guide.png')],
            'its page built': [kpg, 'build', page, '-o', os.path.join(folder, 'guide.kpg')],
            'its project looked through': [kpg, 'build', page],
        }
        times = {label: [] for label in commands}
        for _ in range(runs):
            for label, command in commands.items():
                times[label].append(processor_seconds(command))
        return {label: (statistics.median(values), None) for label, values in times.items()}


def page_of_boxes(count):
    """Named boxes in rows of 25, linked in a ring."""
    boxes = ''.join(f'    - {{name: w{i}, x: {10 + i % 25 * 28}, y: {10 + i // 25 % 20 * 23}, width: 20, height: 15, '
                    f'bgColor: white, highlightFrame: true, right: w{(i + 1) % count}}}\n' for i in range(count))
    return ('flags: 16bit\npage:\n  type: group\n  width: 720\n  height: 480\n  start: w0\n  children:\n' + boxes)


def medians_in_turns(commands, runs):
    """Seconds of each whole process."""
    times = [[processor_seconds(command) for command in commands] for _ in range(runs)]
    return [statistics.median(column) for column in zip(*times)]


def kpg_on_boxes(*command, runs=11):
    """For an OwnGrowth: kpg's command on pages of so many boxes."""
    def run(build, amounts):
        kpg = os.path.abspath(os.path.join(build, 'src/kpg/kpg'))
        with tempfile.TemporaryDirectory() as folder:
            commands = []
            for amount in amounts:
                page = os.path.join(folder, f'{amount}.yaml')
                with open(page, 'w') as out:
                    out.write(page_of_boxes(amount))
                subprocess.run([kpg, 'build', page, '-o', os.path.join(folder, f'{amount}.kpg')], check=True,
                               stdout=subprocess.DEVNULL)
                commands.append([kpg] + [word.format(page=page[:-5], folder=folder) for word in command])
            return medians_in_turns(commands, runs)
    return run


def kpg_image_of_pixels(build, amounts, runs=7):
    """For an OwnGrowth: kpg image on parts of one photograph, three wide to two high."""
    kpg = os.path.abspath(os.path.join(build, 'src/kpg/kpg'))
    with tempfile.TemporaryDirectory() as folder:
        commands = []
        for amount in amounts:
            width = round((amount * 1.5) ** 0.5)
            picture = os.path.join(folder, f'{amount}.png')
            make_photograph(picture, f'{width}x{amount // width}')
            commands.append([kpg, 'image', picture, '-o', os.path.join(folder, f'{amount}.kpx')])
        return medians_in_turns(commands, runs)


def resident_memory(build, runs=15):
    """Kilobytes that the player has with the guide open and no desktop's windows, in order: all, and those of its own. The
    system decides by where it puts things whether a huge page of two megabytes stands for a few small ones."""
    found = []
    for _ in range(runs):
        command = [os.path.join(build, 'bench/guide_memory')]
        output = subprocess.run(command, stdout=subprocess.PIPE, check=True, text=True).stdout
        found.append(tuple(map(int, re.findall(r'^(?:VmRSS|RssAnon):\s*([0-9]+) kB', output, re.MULTILINE))))
    return sorted(found)


FONTS_AND_SIZES = {f'{font}/{size}': f'{name} {size}' for font, name in ((0, 'DejaVu'), (1, 'Liberation'))
                   for size in (8, 12, 16, 24, 40)}
BOTH_FONTS = cases(('0', 'DejaVu'), ('1', 'Liberation'))
SIZES = cases(('16', '16 pixels'), ('64', '64'), ('360', '360'))
SHAPES = ('star', 'triangles', 'scribble', 'circle', 'letters', 'blob')
STROKED = ('star', 'scribble', 'circle', 'blob')
RECTS = cases(('100', '100'), ('1000', '1,000'))
TEXT_SIZES = {f'size:{size}/grey:{grey}': f'{size} pixels, {"grey" if grey else "bits"}' for grey in (1, 0)
              for size in (12, 20, 32)}


def per_shape(title, name, aim, shapes):
    return [Row(f'{title}: {shape}', 'gfx_scan_bench', f'{name}/{shape}', 'cairo', 'Cairo', aim) for shape in shapes]


ROWS = [
    Row('Grey glyphs, level 3, none kept', 't2k_bench', 'grey', 'freetype', 'FreeType, no hinting', 0.8, FONTS_AND_SIZES),
    Row('Outlines, none kept', 't2k_bench', 'outlines', 'freetype', 'FreeType', 0.8, FONTS_AND_SIZES),
    Row('Opening a font', 't2k_bench', 'open', 'freetype', 'FreeType', 1.0, BOTH_FONTS),
    Row('Opening a font, and its first glyph', 't2k_bench', 'first_glyph', 'freetype', 'FreeType', 1.0, BOTH_FONTS),
    Row('Solid rectangles', 'gfx_pixel_bench', 'solid', 'pixman', 'pixman', (0.45, 0.6, 1.0), SIZES),
    Row('Blends over noise', 'gfx_pixel_bench', 'blend/noise', 'pixman', 'pixman', 0.3, SIZES),
    Row('Blends over runs', 'gfx_pixel_bench', 'blend/runs', 'pixman', 'pixman', 0.3, SIZES),
    Row('8-bit to 16-bit sprites', 'gfx_pixel_bench', 'sprite8to16', 'pixman', 'pixman', 0.33, SIZES),
    Row('Region union', 'gfx_region_bench', 'union', 'pixman', 'pixman', 0.5, RECTS),
    Row('Region intersection', 'gfx_region_bench', 'intersect', 'pixman', 'pixman', 0.5, RECTS),
    Row('Region difference', 'gfx_region_bench', 'difference', 'pixman', 'pixman', 0.5, RECTS),
    Row('Gathering rectangles', 'gfx_region_bench', 'gather', 'pixman', 'pixman', 0.5, RECTS),
    *per_shape('Fill', 'fill', 0.4, SHAPES),
    *per_shape('Anti-aliased fill', 'antifill', 0.3, SHAPES),
    *per_shape('Stroke', 'stroke', 0.5, STROKED),
    *per_shape('Anti-aliased stroke', 'antistroke', 0.3, STROKED),
    *per_shape('Hairline', 'hair', 0.4, STROKED),
    Row('60 characters, warm', 'text_bench', 'text', 'cairo', 'Cairo', 0.3, TEXT_SIZES),
    Row('40 lines of 60 characters, warm', 'textpage_bench', 'warm', 'cairo', 'Cairo, the same lines', 0.5,
        cases(('1', 'grey'), ('0', 'bits'))),
    Row('40 lines of 60 characters, cold', 'textpage_bench', 'cold', 'cairo', 'Cairo, the same lines', 0.5,
        cases(('1', 'grey'), ('0', 'bits'))),
    Row('GIF to indices', 'gif_bench', 'gif', 'giflib', 'giflib', 0.5,
        cases(('0', 'flat'), ('1', 'photograph'), ('2', 'noise'), ('3', 'interlaced'))),
    Row('16-bit screen to RGB, flat', 'page_bench', 'rgb', 'copy', 'a copy of the output', 1.3, cases(('0', 'flat')),
        peer_has_cases=False),
    Row('16-bit screen to RGB, noise', 'page_bench', 'rgb', 'copy', 'a copy of the output', 2.0, cases(('1', 'noise')),
        peer_has_cases=False),
    Row('8-bit fills with their flush', 'page_bench', 'fill8_and_flush', '16', 'the same in 16 bits', 1.0, SIZES),
    OwnRow('A photograph for the player, whole process', 'ImageMagick, at no less error', 0.5, picture_for_player),
    OwnRow('The guide by kpg, whole processes', '–', 0.008, kpg_processes),
    OwnRow('Bob', 'Lua 5.4', 0.8,
           bob_bench('calls', 'closures', 'strings', 'vectors', 'properties', 'sends', 'integers', 'mixed'), 0.5),
    OwnRow('Bob, 2,000 lines', 'Lua 5.4, luaL_loadstring', 0.7, bob_bench('compile')),
]

# The same beside peers that draw into 32 bits a pixel, which is less work for them than the player's 16. No aims are set.
IN_32_BITS = [Row(row.title, row.program, row.name, row.peer + '32', row.peers_name, math.inf, row.cases) for row in ROWS
              if getattr(row, 'program', '') in ('gfx_pixel_bench', 'gfx_scan_bench', 'text_bench')]

# Where the time goes in rows that miss their aims, and what keeps them from it, by the beginning of their titles.
REASONS = {
    'Grey glyphs': 'more than a fifth is following curves, a sixth each finding where they cross rows and sweeping over those, '
                   'and a tenth reading coordinates. Where a curve crosses is fixed to the bit by its steps, and going through '
                   'them without vectors was no faster.',
    'Outlines': 'of a glyph of Liberation a third is its coordinates, and a quarter is reading it: each byte says where the next '
                'one lies, so they are gone through one by one, as the peer does.',
    'Solid rectangles': 'at 360 pixels both do nothing but store, and are equally fast.',
    'Region union': 'of a thousand rectangles three fifths is merging spans, and all together is some three cycles for each that '
                    'goes in: a comparison, a choice and a store.',
    'Region intersection': 'as for the union.',
    'Region difference': 'as for the union.',
    'Fill: triangles': 'nearly every row has an edge that begins or ends; 45 in 100 is renewing the two dozen that a row crosses '
                       'and which of them bound spans, a third stepping and storing a dozen short spans a row. Gathering edges '
                       'in a pass of their own and storing without the blitter brought nothing.',
    'Stroke': 'of a star’s stroke half is walking edges and storing spans, a third the outline, whose shape is fixed to the bit; '
              'of a blob 40 in 100 is following curves, which change their line on nearly every row. Filling the ready outline '
              'alone is 70 to 80 in 100 of the time, so an outline for nothing would bring the star and the scribble no nearer '
              'than 0.6; another walk of the edges and one for each blitter brought nothing.',
    '40 lines of 60 characters, warm': 'each line is converted to RGB when it is drawn, which is a third or more; another third '
                                       'is storing the glyphs. The peer draws into the desktop’s own format and has nothing to '
                                       'convert; without that, this would reach the aim.',
    '40 lines of 60 characters, cold': 'three fifths is making the glyphs, where those in grey take as long as the peer’s, a seventh '
                                       'converting the lines to RGB.',
    '16-bit screen to RGB, noise': 'some forty vector instructions for sixteen pixels, where a copy has two loads and two stores. '
                                   'The colours are those of the exact rule to the bit, and arithmetic in 128ths was no faster.',
    'A photograph': 'three in ten is finding the nearest of 240 colours for each of the picture’s, nine times over, a quarter '
                    'dividing the colours among them; finding is exact and has left out already what can’t be the nearest.',
    'The guide by kpg': 'half is the system’s: memory, and mapping the program and its libraries. A program that only says its '
                        'version takes a quarter of the time.',
}


def reason_of(title):
    return next((reason for begin, reason in REASONS.items() if title.startswith(begin)), None)


STAR = (12, 120, 1200)
MORE_OF = {'star': ('points', STAR), 'triangles': ('triangles', (20, 200, 2000)), 'scribble': ('lines', (4, 40, 400)),
           'circle': ('circles', (1, 10, 100)), 'letters': ('letters', (3, 30, 300)), 'blob': ('curves', (5, 50, 500))}
SMALL_RECTS = (10, 100, 1000)
RECT_PIXELS = (240, 2400, 24000)
ROUNDS = (100, 1000, 10000)
BOXES = (10, 100, 1000)

CROWDED = 'where lines cross, they change places in the order of a row’s edges, and the crossings grow with the square.'
AS_FOR_FILL = 'as for the fill of a scribble.'
AS_FOR_TRIANGLES = 'as for triangles: renewing the edges of a row is half the time at the most points.'
AS_FOR_STROKE = 'as for the stroke of a star.'


def growth_per_shape(area, title, name, shapes, remarks):
    return [Growth(area, f'{title}: {shape}', MORE_OF[shape][0], 'gfx_scan_bench', f'growth/{name}/{shape}',
                   MORE_OF[shape][1], remarks.get(shape)) for shape in shapes]


def growth_of_rects(title, name):
    return Growth('Rectangles', title, 'pixels each', 'gfx_pixel_bench', 'growth/' + name, RECT_PIXELS)


def growth_of_loop(name, remark=None):
    return Growth('Programs in Bob', f'Bob: {name}', 'rounds', 'bob_growth_bench', 'loop/' + name, ROUNDS, remark, of='Bob')


GROWTH = [
    Growth('Fonts and text', 'Grey glyphs, level 3, none kept', 'points of a star', 't2k_bench', 'growth/grey', STAR,
           'a line of a glyph with so many spikes has more crossings than there is room for, and then those of the whole glyph '
           'go through one Shell sort; the order in which it leaves equal ones shows.'),
    Growth('Fonts and text', 'Outlines, none kept', 'points of a star', 't2k_bench', 'growth/outlines', STAR),
    Growth('Fonts and text', 'Opening a font', 'glyphs', 't2k_bench', 'growth/open', (60, 600, 6000)),
    Growth('Fonts and text', 'Opening a font, and its first glyph', 'glyphs', 't2k_bench', 'growth/first_glyph',
           (60, 600, 6000)),
    Growth('Fonts and text', 'Characters, grey', 'characters', 'text_bench', 'characters/grey', (6, 60, 600),
           of='60 characters, warm'),
    Growth('Fonts and text', 'Characters, bits', 'characters', 'text_bench', 'characters/bits', (6, 60, 600),
           of='60 characters, warm'),
    Growth('Fonts and text', 'A page of text, warm', 'lines', 'textpage_bench', 'lines/warm', (4, 40, 400),
           of='40 lines of 60 characters, warm'),
    Growth('Fonts and text', 'A page of text, cold', 'lines', 'textpage_bench', 'lines/cold', (4, 40, 400),
           of='40 lines of 60 characters, cold'),
    growth_of_rects('Solid rectangles', 'solid'),
    growth_of_rects('Blends over noise', 'blend/noise'),
    growth_of_rects('Blends over runs', 'blend/runs'),
    growth_of_rects('8-bit to 16-bit sprites', 'sprite8to16'),
    Growth('Rectangles', '8-bit fills with their flush', 'rows', 'page_bench', 'fill8_rows', (4, 40, 400)),
    Growth('Rectangles', '16-bit screen to RGB, flat', 'rows', 'page_bench', 'rgb_rows/flat', (4, 40, 400),
           'four rows and their colours stay in the processor’s nearest cache.'),
    Growth('Rectangles', '16-bit screen to RGB, noise', 'rows', 'page_bench', 'rgb_rows/noise', (4, 40, 400)),
    Growth('Regions', 'Region union', 'rectangles', 'gfx_region_bench', 'small/union', SMALL_RECTS),
    Growth('Regions', 'Region intersection', 'rectangles', 'gfx_region_bench', 'small/intersect', SMALL_RECTS,
           'ten small rectangles a side hardly meet, a thousand do.'),
    Growth('Regions', 'Region difference', 'rectangles', 'gfx_region_bench', 'small/difference', SMALL_RECTS),
    Growth('Regions', 'Gathering rectangles', 'rectangles', 'gfx_region_bench', 'small/gather', SMALL_RECTS,
           'each rectangle is added to a region that has grown, so the work itself grows with the square; the peer’s does '
           'as well.'),
    *growth_per_shape('Fills', 'Fill', 'fill', SHAPES, {
        'star': AS_FOR_TRIANGLES,
        'triangles': 'of twenty, few begin or end on a row; of two thousand some do on each, and then all edges that the row '
                     'crosses are gathered anew.',
        'scribble': CROWDED}),
    *growth_per_shape('Anti-aliased fills', 'Anti-aliased fill', 'antifill', SHAPES, {'scribble': AS_FOR_FILL}),
    *growth_per_shape('Strokes', 'Stroke', 'stroke', STROKED, {
        'star': 'a thousand spikes lie closer together than the stroke is wide, so each outline crosses its neighbours, and '
                'how many those are grows with the points as well.',
        'scribble': AS_FOR_FILL, 'blob': AS_FOR_STROKE}),
    *growth_per_shape('Anti-aliased strokes', 'Anti-aliased stroke', 'antistroke', STROKED, {
        'star': AS_FOR_STROKE, 'scribble': AS_FOR_FILL, 'blob': AS_FOR_STROKE}),
    *growth_per_shape('Hairlines', 'Hairline', 'hair', STROKED, {}),
    growth_of_loop('calls'),
    growth_of_loop('closures'),
    growth_of_loop('strings'),
    growth_of_loop('vectors', 'a full vector moves into one of 128 elements more at most, which pages can see by the memory that '
                              'is left, so the moves grow with the square.'),
    Growth('Programs in Bob', 'Bob: properties', 'properties', 'bob_growth_bench', 'properties', (10, 100, 1000), of='Bob'),
    growth_of_loop('sends'),
    growth_of_loop('integers'),
    growth_of_loop('mixed'),
    Growth('Pages', 'Compiling a script', 'lines', 'bob_growth_bench', 'compile', (20, 200, 2000), of='Bob, 2,000 lines'),
    Growth('Pages', 'A collection', 'live objects', 'bob_growth_bench', 'collection', (10, 100, 1000)),
    Growth('Pages', 'Loading a page', 'widgets, each found by name', 'page_bench', 'LoadSlaves', (500, 5000, 50000),
           'fifty thousand widgets and their names leave the caches.'),
    Growth('Pages', 'Starting timers', 'timers that wait', 'page_bench', 'StartTimers', (100, 1000, 10000),
           'an ordered tree, so each costs the logarithm of their number, and more where so many are out of the nearest '
           'cache.'),
    Growth('Pictures and kpg', 'GIF to indices', 'rows', 'gif_bench', 'rows', (48, 480, 4800)),
    OwnGrowth('Pictures and kpg', 'A photograph for the player, whole process', 'pixels', kpg_image_of_pixels,
              (3456, 34560, 345600)),
    OwnGrowth('Pictures and kpg', 'kpg shot, whole process', 'widgets', kpg_on_boxes('shot', '{page}.kpg', '-o', '{folder}/b.png'),
              BOXES, of='The guide by kpg, whole processes'),
    OwnGrowth('Pictures and kpg', 'kpg build, whole process', 'widgets',
              kpg_on_boxes('build', '{page}.yaml', '-o', '{folder}/b.kpg'), BOXES, of='The guide by kpg, whole processes'),
    OwnGrowth('Pictures and kpg', 'kpg check, whole process', 'widgets', kpg_on_boxes('check', '{page}.yaml'), BOXES),
]
