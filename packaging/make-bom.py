#!/usr/bin/env python3
"""Writes the bill of materials of packages, CycloneDX 1.5 as JSON: make-bom.py VERSION FOLDER

FOLDER holds the packages; beside them comes vistrel-VERSION.cdx.json, which names each with its hash and what others have
made of what is in it: libraries that were linked in or whose headers were, modules of npm, fonts. What a Debian package
takes from the system is in its own list of dependencies. The same packages give the same bytes.
"""
import hashlib
import json
import os
import pathlib
import subprocess
import sys
import time
import uuid

ROOT = pathlib.Path(__file__).resolve().parent.parent

# Debian's packages. Headers are compiled in everywhere; the kit's libraries where they are linked statically.
HEADERS = ['nlohmann-json3-dev', 'libcli11-dev']
LINKED = {'zlib': 'zlib', 'libpng1.6': 'libpng', 'giflib': 'giflib', 'yaml-cpp': 'yaml-cpp'}  # sources, their names
FONTS = ['fonts-dejavu-core']
RUNTIMES = {'windows': ['gcc-mingw-w64-x86-64-posix-runtime', 'mingw-w64-x86-64-dev'], 'web': ['emscripten']}  # linked in


def installed(package):
    version = subprocess.run(['dpkg-query', '-W', '-f', '${Version}', package], check=True, stdout=subprocess.PIPE, text=True)
    return debian(package, version.stdout)


def unpacked(sources, source):
    """Of a source package that the build has fetched."""
    version = subprocess.run(['dpkg-parsechangelog', '-l', sources / source / 'debian/changelog', '-S', 'Version'], check=True,
                             stdout=subprocess.PIPE, text=True)
    return debian(LINKED[source], version.stdout.strip(), source=True)


def debian(name, version, source=False):
    purl = f'pkg:deb/debian/{name}@{version}' + ('?arch=source' if source else '')
    return {'type': 'library', 'bom-ref': purl, 'name': name, 'version': version, 'purl': purl}


def npm_modules():
    """What is bundled into the playground and its guide."""
    lock = json.loads((ROOT / 'browser/package-lock.json').read_text())['packages']
    for place, module in sorted(lock.items()):
        if not place or module.get('dev'):
            continue
        name = place.rpartition('node_modules/')[2]
        purl = f"pkg:npm/{name.replace('@', '%40')}@{module['version']}"
        yield {'type': 'library', 'bom-ref': purl, 'name': name, 'version': module['version'], 'purl': purl}


def parts_of(package):
    """What others have made of a package's contents."""
    name = package.name
    headers, fonts = [installed(header) for header in HEADERS], [installed(font) for font in FONTS]
    runtime = lambda system: [installed(part) for part in RUNTIMES[system]]
    linked = lambda system: [unpacked(ROOT / 'build' / system / 'sources', source) for source in LINKED] + runtime(system)
    if name.endswith('playground.tar.gz'):
        return linked('web') + headers[:1] + list(npm_modules()) + fonts
    if 'windows' in name:
        return linked('windows') + headers + fonts
    if name.startswith('vistrel-data'):  # has the viewer
        return runtime('web') + fonts
    return headers if name.startswith('vistrel-kit') else headers[:1] if name.startswith('vistrel-studio') else []


def main():
    version, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    packages = sorted(file for file in folder.iterdir() if file.suffix in ('.deb', '.zip', '.exe', '.gz'))
    components, dependencies = {}, []
    for package in packages:
        parts = parts_of(package)
        components.update({part['bom-ref']: part for part in parts})
        components[package.name] = {'type': 'application', 'bom-ref': package.name, 'name': package.name, 'version': version,
                                    'hashes': [{'alg': 'SHA-256', 'content': hashlib.sha256(package.read_bytes()).hexdigest()}]}
        dependencies.append({'ref': package.name, 'dependsOn': sorted(part['bom-ref'] for part in parts)})
    bill = {
        'bomFormat': 'CycloneDX', 'specVersion': '1.5', 'version': 1,
        'metadata': {
            'timestamp': time.strftime('%Y-%m-%dT%H:%M:%SZ', time.gmtime(int(os.environ.get('SOURCE_DATE_EPOCH', '0')))),
            'component': {'type': 'application', 'bom-ref': 'vistrel', 'name': 'vistrel', 'version': version},
        },
        'components': [components[ref] for ref in sorted(components)],
        'dependencies': dependencies,
    }
    bill['serialNumber'] = f'urn:uuid:{uuid.uuid5(uuid.NAMESPACE_URL, json.dumps(bill))}'
    out = folder / f'vistrel-{version}.cdx.json'
    out.with_suffix('.part').write_text(json.dumps(bill, indent=1) + '\n')
    out.with_suffix('.part').replace(out)


if __name__ == '__main__':
    main()
