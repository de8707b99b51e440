#!/usr/bin/env python3
"""Packs a folder, itself included, into a zip file whose bytes depend on nothing but the files' bytes and names.

Usage: tools/packaging/write_zip.py FOLDER FILE.zip SECONDS
"""
import pathlib
import sys
import time
import zipfile


def main():
    folder, target, seconds = pathlib.Path(sys.argv[1]), sys.argv[2], int(sys.argv[3])
    stamp = time.gmtime(seconds)[:6]
    with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as packed:
        for file in sorted(path for path in folder.rglob("*") if path.is_file()):
            entry = zipfile.ZipInfo(str(file.relative_to(folder.parent)), stamp)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = (0o755 if file.suffix in (".exe", ".dll") else 0o644) << 16
            packed.writestr(entry, file.read_bytes(), compresslevel=9)


if __name__ == "__main__":
    main()
