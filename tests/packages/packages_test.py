"""Looks at packages as somebody does who installs them: packages_test.py FOLDER

The Debian packages are unpacked beside each other; the programs run from there, are hardened, and lintian has nothing to
say. The zip's kpg runs under Wine. Both show the demo, and as the same pixels.
"""
import pathlib
import subprocess
import sys
import tempfile
import zipfile

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
    for program in programs:
        hardened = run('hardening-check', '--nofortify', program)
        expect(hardened.returncode == 0, hardened.stdout)
        version = run(program, '--version') if program.name != 'vistrel' else None
        expect(not version or version.returncode == 0, version and version.stdout)
    shot = run(root / 'usr/bin/kpg', 'shot', root / 'usr/share/vistrel/demo/guide.kpg', '--strict', '-o', root / 'guide.png')
    expect(shot.returncode == 0, f'the demo: {shot.stdout}')


def check_debian(packages, root):
    expect(len(packages) == 4, f'packages: {packages}')
    for package in packages:
        check_package(package)
        run('dpkg-deb', '-x', package, root)
    check_programs(root)


def check_windows(package, root):
    with zipfile.ZipFile(package) as archive:
        expect(archive.testzip() is None, f'{package.name} is damaged')
        archive.extractall(root)
    inside = root / package.stem
    for name in ('vistrel.exe', 'kpg.exe', 'README.txt', 'demo/guide.kpg', 'docs/tutorial.md', 'licences/zlib.txt'):
        expect((inside / name).is_file(), f'{package.name} has no {name}')
    wine = pathlib.Path(__file__).parents[2] / 'scripts/wine'
    shot = run(wine, inside / 'kpg.exe', 'shot', inside / 'demo/guide.kpg', '--strict', '-o', root / 'guide-windows.png')
    expect(shot.returncode == 0, f'the demo of {package.name}: {shot.stdout}')


def main():
    packages = pathlib.Path(sys.argv[1])
    debian, windows = sorted(packages.glob('*.deb')), sorted(packages.glob('*-windows.zip'))
    expect(debian or windows, 'there is no package')
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        if debian:
            check_debian(debian, root)
        for package in windows:
            check_windows(package, root)
        if debian and windows:
            same = run(root / 'usr/bin/kpg', 'diff', root / 'guide.png', root / 'guide-windows.png')
            expect(same.returncode == 0, f'the two show the demo differently: {same.stdout}')
    print('\n'.join(faults))
    sys.exit(1 if faults else 0)


if __name__ == '__main__':
    main()
