"""Looks at packages as somebody does who installs them: packages_test.py FOLDER

The Debian packages are unpacked beside each other; the programs run from there, are hardened, and lintian has nothing to
say. What is in the zip for Windows runs under Wine, and so does the installer, which puts the same files into a folder and
takes them away again. Both show the demo, and as the same pixels. The playground is whole. The bill of materials knows all
packages by their hashes.
"""
import hashlib
import json
import pathlib
import re
import subprocess
import sys
import tarfile
import tempfile
import urllib.request
import zipfile

TREE = pathlib.Path(__file__).parents[2]

faults = []


def expect(true, what):
    if not true:
        faults.append(what)


def run(*command):
    return subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)


def field(package, name):
    return run('dpkg-deb', '-f', package, name).stdout.strip()


def check_package(package):
    lintian = run('lintian', '--fail-on', 'error,warning', package)
    expect(lintian.returncode == 0, f'{package.name}:\n{lintian.stdout}')
    depends = field(package, 'Depends')
    expect('libc6' in depends or package.name.startswith('vistrel-data'), f'{package.name} depends on {depends}')


def check_programs(root):
    programs = sorted((root / 'usr/bin').iterdir())
    expect([p.name for p in programs] == ['kpg', 'vistrel', 'vistrel-studio'], f'programs: {programs}')
    for program in [*programs, root / 'usr/lib/vistrel/modules/pageserver.so']:
        # All are compiled with fortified functions, but a call whose size the compiler can't know stays as it is, and a
        # program may have no other. Debian 12 starts programs with code that isn't marked for control flow protection,
        # so none of them is.
        hardened = run('hardening-check', '--nofortify', '--nocfprotection', program)
        expect(hardened.returncode == 0, hardened.stdout)
    for name in ('kpg', 'vistrel-studio'):
        version = run(root / 'usr/bin' / name, '--version')
        expect(version.returncode == 0, version.stdout)
    shot = run(root / 'usr/bin/kpg', 'shot', root / 'usr/share/vistrel/demo/guide.kpg', '--strict', '-o', root / 'guide.png')
    expect(shot.returncode == 0, f'the demo: {shot.stdout}')
    check_server(root)


def check_server(root):
    """What kpg watch --serve loads and shows pages in is in the package, too."""
    command = [root / 'usr/bin/kpg', 'watch', root / 'usr/share/vistrel/demo/guide.kpg', '--serve']
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True) as watch:
        address = watch.stdout.readline().strip()
        for name in ('', 'vistrel-screen.js', 'vistrel-player.wasm'):
            try:
                urllib.request.urlopen(address + name).read()
            except (OSError, ValueError) as error:
                expect(False, f'kpg watch --serve: {address}{name}: {error}')
        watch.terminate()


def check_debian(packages, root):
    expect(len(packages) == 4, f'packages: {packages}')
    for package in packages:
        check_package(package)
        run('dpkg-deb', '-x', package, root)
    check_programs(root)


def wine(*command):
    return run(TREE / 'scripts/wine', *command)


def check_windows(package, root):
    with zipfile.ZipFile(package) as archive:
        expect(archive.testzip() is None, f'{package.name} is damaged')
        archive.extractall(root)
    inside = root / package.stem
    for name in ('vistrel.exe', 'kpg.exe', 'README.txt', 'demo/guide.kpg', 'docs/tutorial.md', 'licences/zlib.txt'):
        expect((inside / name).is_file(), f'{package.name} has no {name}')
    shot = wine(inside / 'kpg.exe', 'shot', inside / 'demo/guide.kpg', '--strict', '-o', root / 'guide-windows.png')
    expect(shot.returncode == 0, f'the demo of {package.name}: {shot.stdout}')


def contents(folder):
    return {str(file.relative_to(folder)): file.read_bytes() for file in folder.rglob('*') if file.is_file()}


def check_installer(installer, root):
    installed = root / 'installed'
    done = wine(installer, '/S', '/D=Z:' + str(installed).replace('/', '\\'))
    expect(done.returncode == 0 and installed.is_dir(), f'{installer.name}: {done.stdout}')
    if not installed.is_dir():
        return
    packed = contents(root / installer.stem.removesuffix('-setup'))
    expect(packed.items() <= contents(installed).items(), f'{installer.name} installs other files than the zip has')
    (installed / 'demo/mine.yaml').write_text('mine')
    # It would start a copy of itself and end at once, but for the last word.
    done = wine(installed / 'uninstall.exe', '/S', '_?=Z:' + str(installed).replace('/', '\\'))
    left = set(contents(installed)) - {'uninstall.exe'}  # the copy would have taken that
    expect(left == {'demo/mine.yaml'}, f'uninstalling leaves {left}: {done.stdout}')


def check_playground(package, root):
    with tarfile.open(package) as archive:
        archive.extractall(root)
    inside = root / package.name.removesuffix('.tar.gz')
    page = (inside / 'index.html').read_text()
    for name in re.findall(r'(?:src|href)="([^":#]+)"', page):
        expect((inside / name).is_file(), f'{package.name}: the page names {name}, which is missing')
    expect(list(inside.rglob('*.wasm')), f'{package.name} has no module')


def check_bill(bill, packages):
    content = json.loads(bill.read_text())
    hashes = {part['name']: part['hashes'][0]['content'] for part in content['components'] if 'hashes' in part}
    expect(hashes == {file.name: hashlib.sha256(file.read_bytes()).hexdigest() for file in packages},
           f'{bill.name} lists other packages: {sorted(hashes)}')
    known = {part['bom-ref'] for part in content['components']}
    expect(all(set(package['dependsOn']) <= known for package in content['dependencies']), f'{bill.name} names unknown parts')


def main():
    packages = pathlib.Path(sys.argv[1])
    debian, windows = sorted(packages.glob('*.deb')), sorted(packages.glob('*-windows.zip'))
    bills = list(packages.glob('*.cdx.json'))
    expect(len(bills) == 1, f'bills of materials: {bills}')
    for bill in bills:
        check_bill(bill, [file for file in packages.iterdir() if file != bill])
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        if debian:
            check_debian(debian, root)
        for package in windows:
            check_windows(package, root)
        for installer in packages.glob('*-setup.exe'):
            check_installer(installer, root)
        for package in packages.glob('*-playground.tar.gz'):
            check_playground(package, root)
        if debian and windows:
            same = run(root / 'usr/bin/kpg', 'diff', root / 'guide.png', root / 'guide-windows.png')
            expect(same.returncode == 0, f'the two show the demo differently: {same.stdout}')
    print('\n'.join(faults))
    sys.exit(1 if faults else 0)


if __name__ == '__main__':
    main()
