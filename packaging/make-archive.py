#!/usr/bin/env python3
"""Packs a folder, with the same bytes every time: make-archive.py FOLDER ARCHIVE.zip|ARCHIVE.tar.gz

Names are sorted, owners are nobody, and all times are that of SOURCE_DATE_EPOCH, or of 1980 without it.
"""
import gzip
import os
import pathlib
import sys
import tarfile
import time
import zipfile

TIME = max(int(os.environ.get('SOURCE_DATE_EPOCH', '0')), 315532800)  # zip begins in 1980


def files_of(folder):
    return sorted(file for file in folder.rglob('*') if file.is_file())


def mode_of(file):
    return 0o755 if os.access(file, os.X_OK) else 0o644


def write_zip(folder, archive):
    with zipfile.ZipFile(archive, 'w', zipfile.ZIP_DEFLATED, compresslevel=9) as out:
        for file in files_of(folder):
            info = zipfile.ZipInfo(file.relative_to(folder.parent).as_posix(), time.gmtime(TIME)[:6])
            info.compress_type = zipfile.ZIP_DEFLATED
            info.external_attr = mode_of(file) << 16
            out.writestr(info, file.read_bytes())


def write_tar(folder, archive):
    with open(archive, 'wb') as raw, gzip.GzipFile('', 'wb', 9, raw, TIME) as packed, \
            tarfile.open(fileobj=packed, mode='w', format=tarfile.PAX_FORMAT) as out:
        for file in files_of(folder):
            info = tarfile.TarInfo(file.relative_to(folder.parent).as_posix())
            info.size, info.mtime, info.mode = file.stat().st_size, TIME, mode_of(file)
            with open(file, 'rb') as data:
                out.addfile(info, data)


def main():
    folder, archive = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2])
    part = archive.with_name(archive.name + '.part')
    (write_zip if archive.suffix == '.zip' else write_tar)(folder, part)
    part.replace(archive)


if __name__ == '__main__':
    main()
