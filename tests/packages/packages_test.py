"""Looks at the Debian packages as somebody does who installs them: packages_test.py FOLDER

They are unpacked beside each other; the programs run from there, are hardened, and lintian has nothing to say.
"""
import pathlib
import subprocess
import sys
import tempfile

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


def main():
    packages = sorted(pathlib.Path(sys.argv[1]).glob('*.deb'))
    expect(len(packages) == 4, f'packages: {packages}')
    with tempfile.TemporaryDirectory() as folder:
        for package in packages:
            check_package(package)
            run('dpkg-deb', '-x', package, folder)
        check_programs(pathlib.Path(folder))
    print('\n'.join(faults))
    sys.exit(1 if faults else 0)


if __name__ == '__main__':
    main()
