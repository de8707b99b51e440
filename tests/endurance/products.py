"""What the programs write, for tests of what happens when writing goes wrong: one way to make a former version of it,
one to make the next, and what may be found in the folder afterwards."""
import os
import pathlib
import re
import shutil
import struct
import subprocess
import tempfile

LUMAFOLD = os.environ["LUMAFOLD"]
FAILING_CALLS = os.environ["LUMAFOLD_FAILING_CALLS"]

# Thousands of flushed files; what they are flushed to makes no difference to what is tested.
IN_MEMORY = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None

TEMPORARY = re.compile(r"~[0-9a-f]{6}\.tmp")
MOMENT = re.compile(rb"\w{3} \w{3} [ \d]\d \d\d:\d\d:\d\d \d{4}")
STAGING = re.compile(r"\.lumafold-[0-9]+")


def bitmap(width, height, seed):
    """A 24-bit bitmap file full of noise, the same for the same arguments."""
    stride = (width * 3 + 3) // 4 * 4
    rows = bytearray()
    for _ in range(stride * height):
        seed = (seed * 1103515245 + 12345) & 0x7FFFFFFF
        rows.append(seed >> 16 & 0xFF)
    head = struct.pack("<2sIIIIiiHHIIIIII", b"BM", 54 + len(rows), 0, 54, 40, width, height, 1, 24, 0, 0, 0, 0, 0, 0)
    return head + bytes(rows)


def contents(folder):
    """{path below the folder: bytes}, folders with None, and the moment of writing that settings tell with no number."""
    return {str(path.relative_to(folder)): MOMENT.sub(b"moment", path.read_bytes()) if path.is_file() else None
            for path in folder.rglob("*")}


class Product:
    """`former` and `next` are the words of two programs that write `target` in the folder they run in."""

    def __init__(self, target, former, following):
        self.target, self.former, self.next = target, former, following

    def __str__(self):
        return self.target

    def damage(self, folder, former, following):
        """What is wrong in the folder after a run that was ended, whenever that was; None when nothing is.
        `former` and `following` are the contents that two whole runs make."""
        found = contents(folder)
        if not self.target.endswith("/"):
            strays = [name for name in found if name not in former and not TEMPORARY.fullmatch(name)]
            if strays:
                return f"strays: {strays}"
            return None if found.get(self.target) in (former[self.target], following[self.target]) else "damaged"
        leftovers, inside = {}, {}
        for name, data in found.items():
            parts = pathlib.PurePath(name).parts
            if len(parts) > 1 and STAGING.fullmatch(parts[1]):
                leftovers[name] = data
            else:
                inside[name] = data
        if inside in (former, following):
            return None
        if self.target + "task.json" in inside:
            return "task.json with other frames than its own"
        damaged = [name for name, data in inside.items() if (name, data) not in {*former.items(), *following.items()}]
        # What of the former frames is neither in its place nor in the hidden folder.
        aside = {(name.split("/former/")[1], data) for name, data in leftovers.items() if "/former/" in name}
        lost = [name for name, data in former.items()
                if data is not None and inside.get(name) != data and (name[len(self.target):], data) not in aside]
        return f"strays or damaged: {damaged}, lost: {lost}" if damaged or lost else None


def products():
    def build(target, *pictures):
        return [LUMAFOLD, "build", "--quiet", "-o", target, "--transition", "None", "--no-supercompress",
                *(f"../in/{picture}.bmp" for picture in pictures)]

    def settings(*values):
        return [LUMAFOLD, "settings", "--write", "kept.ini", *(word for value in values for word in ("--set", value))]

    # Every kind of animation file is written by the same means.
    yield from (Product(target, build(target, *"abc"), build(target, *"de")) for target in ("x.gif", "x/"))
    yield Product("kept.ini", settings(), settings("RandomSeed=777", "TransitionIrisStep=9"))


class Workplace:
    """A folder with pictures in it, and for each product a folder to write it in. Goes when it is closed."""

    def __init__(self, width=61, height=47):
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="lumafold-", dir=IN_MEMORY))
        (self.root / "in").mkdir()
        for number, name in enumerate("abcde"):
            (self.root / "in" / f"{name}.bmp").write_bytes(bitmap(width, height, number))

    def close(self):
        shutil.rmtree(self.root)

    def empty(self, name):
        """A new folder of this name beside the pictures."""
        folder = self.root / name
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        return folder

    def made(self, words):
        """What a whole run leaves in an empty folder."""
        folder = self.empty("made")
        done = run(words, folder)
        assert done.returncode == 0, done.stderr
        return contents(folder)

    def filled(self, name, made):
        """A folder with these contents."""
        folder = self.empty(name)
        for path, data in made.items():
            if data is None:
                (folder / path).mkdir()
            else:
                (folder / path).parent.mkdir(exist_ok=True)
                (folder / path).write_bytes(data)
        return folder


def run(words, folder, fault="", log=""):
    """With every call that changes files watched where one of them is to go wrong, or all are to be told of."""
    variables = {"LUMAFOLD_FAULT": fault, "LUMAFOLD_FAULT_LOG": str(log)}
    variables = {name: value for name, value in variables.items() if value}
    if variables:
        variables["LD_PRELOAD"] = FAILING_CALLS
    return subprocess.run(words, cwd=folder, capture_output=True, text=True, timeout=60, env={**os.environ, **variables})
