#!/usr/bin/env python3
"""How long a language server takes to answer: lsp_bench.py KPG

20 files are open, and one of them has 10,000 lines. Before each question a letter is typed in that file, as in an editor,
so nothing that was known of its text before is of use. Times are as the editor sees them, in milliseconds.
"""
import pathlib
import random
import statistics
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / 'tests' / 'kpg'))
from lspclient import Client  # noqa: E402
from lspmodel import TOOLS, long_page  # noqa: E402

REQUESTS = ['completion', 'hover', 'definition', 'references', 'signatureHelp', 'documentSymbol', 'foldingRange',
            'semanticTokens/full', 'documentColor']
TIMES = 60


def main():
    kpg = pathlib.Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name).resolve()
        client = Client(kpg, folder)
        for n in range(19):
            (folder / f'page{n}.yaml').write_text(long_page(12))
            client.open(f'page{n}.yaml')
        (folder / 'tools.bob').write_text(TOOLS)
        client.open('tools.bob')
        client.open('long.yaml', long_page(1000))
        client.diagnostics('long.yaml')
        places = random.Random(1)
        for method in REQUESTS:
            spent = []
            for _ in range(TIMES):
                text = client.texts['long.yaml']
                entry = places.randrange(1000)
                key = places.choice(['    down: e', '    textStyle: b', f'show(widgets.entry{entry}, '])
                at = text.index(key, text.index(f'name: entry{entry}\n')) + len(key)
                client.change('long.yaml', (at, at, 'n'))
                more = {'context': {'includeDeclaration': True}} if method == 'references' else {}
                where = client.place('long.yaml', at + 1)
                begun = time.perf_counter()
                client.ask(f'textDocument/{method}', textDocument={'uri': client.uri('long.yaml')}, position=where, **more)
                spent.append(1000 * (time.perf_counter() - begun))
                client.change('long.yaml', (at, at + 1, ''))
            print(f'{method:22} median {statistics.median(spent):7.1f}   greatest {max(spent):7.1f}')
        client.end()


main()
