#!/usr/bin/env python3
"""Whatever ends a program or fails under it while it writes, what stood there before stands there still, or the new is
there whole. Run by ctest, which tells where the programs are."""
import errno
import functools
import signal
import unittest

import products

ENDINGS = [f"kill={int(number)}" for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP)]


def for_each_product(test):
    """A test gets every product, with what its two programs leave in an empty folder."""
    @functools.wraps(test)
    def tests(self):
        for product in products.products():
            with self.subTest(product=str(product)):
                former, following = self.place.made(product.former), self.place.made(product.next)
                self.assertNotEqual(former, following)
                test(self, product, former, following)
    return tests


class Durability(unittest.TestCase):
    def setUp(self):
        self.place = products.Workplace()
        self.addCleanup(self.place.close)

    def faulty_runs(self, product, former, *faults):
        """Runs the next program over the former files, with a fault at its first call, its second, and so on to its
        last; where there are several faults they take turns."""
        calls = self.log_of(product, former)
        self.assertGreater(len(calls), 3)
        for at in range(1, len(calls) + 1):
            folder = self.place.filled("work", former)
            yield calls[at - 1], folder, products.run(product.next, folder, f"{at}:{faults[at % len(faults)]}")

    def log_of(self, product, former):
        log = self.place.root / "log"
        log.unlink(missing_ok=True)
        done = products.run(product.next, self.place.filled("work", former), log=log)
        self.assertEqual(done.returncode, 0, done.stderr)
        return [tuple(line.split(" ", 1)) for line in log.read_text().splitlines()]

    def check_next_run(self, product, folder, following):
        """After whatever was left, a run does its work, and cleans up where it owns the folder."""
        done = products.run(product.next, folder)
        self.assertEqual(done.returncode, 0, done.stderr)
        found = {name: data for name, data in products.contents(folder).items()
                 if not products.TEMPORARY.fullmatch(name)}
        self.assertEqual(found.keys(), following.keys())
        self.assertEqual(found, following)

    @for_each_product
    def test_killed_at_every_call(self, product, former, following):
        for call, folder, done in self.faulty_runs(product, former, f"kill={int(signal.SIGKILL)}"):
            self.assertEqual(done.returncode, -signal.SIGKILL)
            self.assertIsNone(product.damage(folder, former, following), call)
            self.check_next_run(product, folder, following)

    @for_each_product
    def test_told_to_end_at_every_call(self, product, former, following):
        for call, folder, done in self.faulty_runs(product, former, *ENDINGS):
            self.assertEqual(done.returncode, 130, done.stderr)
            self.assertIn(products.contents(folder), (former, following), call)

    @for_each_product
    def test_every_call_fails(self, product, former, following):
        """Once: a full disk, a bad one. The program says so or did not need the call; nothing of it is left over unless
        removing was what failed."""
        for call, folder, done in self.faulty_runs(product, former, f"fail={errno.ENOSPC}", f"fail={errno.EIO}"):
            self.assertIn(done.returncode, (0, 1), call)
            if call[0].startswith("unlink"):
                self.assertIsNone(product.damage(folder, former, following), call)
                continue
            self.assertEqual(done.returncode == 0, call[0] == "chmod", (call, done.stderr))
            self.assertEqual(len(done.stderr.splitlines()), done.returncode, done.stderr)
            self.assertEqual(products.contents(folder), former if done.returncode else following, call)

    @for_each_product
    def test_every_call_fails_from_one_on(self, product, former, following):
        """A disk that is gone: nothing can be tidied any more."""
        for call, folder, done in self.faulty_runs(product, former, f"from={errno.EIO}"):
            if not call[0].startswith("unlink"):
                self.assertEqual(done.returncode, 1, call)
            self.assertIsNone(product.damage(folder, former, following), call)

    @for_each_product
    def test_writes_that_take_less_than_given_go_on(self, product, former, following):
        for call, folder, done in self.faulty_runs(product, former, "half"):
            self.assertEqual(done.returncode, 0, done.stderr)
            self.assertEqual(products.contents(folder), following, call)

    @for_each_product
    def test_names_are_given_to_what_is_on_the_disk(self, product, former, following):
        """A file takes a name only after its last byte was flushed."""
        flushed, renamed = False, 0
        for call, path in self.log_of(product, former):
            if call in ("open", "write"):
                flushed = False
            elif call == "fsync":
                flushed = True
            elif call == "rename":
                renamed += 1
                self.assertTrue(flushed, path)
        self.assertGreater(renamed, 0)


if __name__ == "__main__":
    unittest.main()
