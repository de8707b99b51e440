#!/usr/bin/env python3
"""A disk that has room for less and less of what is written: the program says so and leaves what was there. The disk is
one in memory, mounted where nobody else sees it; 77 where that is not allowed. Run by ctest."""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

import products

PAGE = 4096
BYTES = 2 * 1024 * 1024


class FullDisk(unittest.TestCase):
    def test_room_for_less_and_less(self):
        for product in products.products():
            with self.subTest(product=str(product)):
                place = products.Workplace(203, 151)
                self.addCleanup(place.close)
                former, following = place.made(product.former), place.made(product.next)
                disk = place.empty("disk")
                subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={BYTES}", "tmpfs", disk], check=True)
                try:
                    self.sweep(product, disk, former, following)
                finally:
                    subprocess.run(["umount", disk], check=True)

    def sweep(self, product, disk, former, following):
        """From no page left to as many as it takes; a page more each time."""
        refused = 0
        for pages in range(BYTES // PAGE):
            folder = self.prepare(disk, former, pages)
            done = products.run(product.next, folder)
            filler = folder / "filler"
            self.assertLessEqual(filler.stat().st_size, BYTES)
            filler.unlink()
            if done.returncode == 0:
                self.assertEqual(products.contents(folder), following)
                break
            refused += 1
            self.assertEqual(done.returncode, 1, done.stderr)
            self.assertEqual(len(done.stderr.splitlines()), 1, done.stderr)
            if product.is_real:
                self.assertRegex(done.stderr, re.escape(product.target) + ".*: (the disk is full|No space left)")
            self.assertEqual(products.contents(folder), former)
        print(f"{product}: refused with up to {refused - 1} pages left, written with {refused}", file=sys.stderr)
        self.assertGreater(refused, 0)
        self.assertEqual(done.returncode, 0)

    def prepare(self, disk, former, pages):
        for path in sorted(disk.rglob("*"), reverse=True):
            path.rmdir() if path.is_dir() else path.unlink()
        folder = disk
        for name, data in former.items():
            if data is None:
                (folder / name).mkdir()
        for name, data in former.items():
            if data is not None:
                (folder / name).write_bytes(data)
        room = os.statvfs(disk)
        with open(folder / "filler", "wb") as filler:
            filler.write(bytes((room.f_bavail - pages) * room.f_bsize))
        self.assertEqual(os.statvfs(disk).f_bavail, pages)
        return folder


def in_a_space_of_its_own():
    """Runs this again where it may mount; the status, or None where it may not."""
    if shutil.which("unshare") is None:
        return None
    for words in (["unshare", "--mount"], ["unshare", "--mount", "--map-root-user"]):
        with tempfile.TemporaryDirectory() as folder:
            mount = ["mount", "-t", "tmpfs", "tmpfs", folder]
            if subprocess.run([*words, *mount], capture_output=True).returncode == 0:
                again = [*words, sys.executable, pathlib.Path(__file__).resolve(), "--mounting"]
                return subprocess.run([*again, *sys.argv[1:]]).returncode
    return None


if __name__ == "__main__":
    if "--mounting" in sys.argv:
        sys.argv.remove("--mounting")
        unittest.main()
    status = in_a_space_of_its_own()
    if status is None:
        print("NOT RUN: a disk of a few pages cannot be mounted here; root could", file=sys.stderr)
    sys.exit(77 if status is None else status)
