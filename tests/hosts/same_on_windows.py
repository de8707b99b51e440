#!/usr/bin/env python3
"""Holds the files that the Windows command line writes against those of the native one: every transition, every kind
of output, every kind of palette, pictures in the narrow shape that the system draws ellipses in by rules of its own,
names with all kinds of letters. They must be the same to the byte, and so must all that is said.

Usage: tests/hosts/same_on_windows.py NATIVE_DIR WINDOWS_PROGRAM WORK_FOLDER
"""
import concurrent.futures
import pathlib
import shutil
import subprocess
import sys

from file_names import NAMES

ROOT = pathlib.Path(__file__).resolve().parents[2]
OUTPUTS = ["x.gif", "x.png", "x.mng", "x/"]
TRANSITIONS = 33
COLOURS = [
    ["--custom-palette", "--dither"],
    ["--true-colour"],
    ["--custom-palette", "--no-dither", "--no-supercompress"],
    ["--palette", "0", "--dither"],
    ["--palette", "216-color safe", "--dither"],
    ["--true-colour", "--supercompress"],
    ["--palette", "256-color with gray", "--no-dither"],
]


def cases():
    """Yields words of the command line. Three pictures hold three transitions."""
    for folder in ("", "narrow/"):
        for number, row in enumerate(range(0, TRANSITIONS, 3)):
            words = ["build", "-o", OUTPUTS[number % len(OUTPUTS)], *COLOURS[number % len(COLOURS)]]
            for offset, picture in enumerate(["dawn.png", "lanterns.png", "boats.png"]):
                words += ["--transition", str(row + offset), folder + picture]
            yield words
    yield ["build", "-o", "x.png", *(f"{name}.gif" for name in NAMES)]
    for number, name in enumerate(NAMES):
        yield ["build", "-o", f"{name}.x" + OUTPUTS[number % len(OUTPUTS)][1:], f"{name}.gif"]
    yield ["build", "-o", "x.gif", "--sheet", "sheet.png", "--transition", "23", "boats.jpg", "clear.gif"]
    yield ["build", "-o", "x.png", "--matte", "10,200,90", "--transition", "Hurricane", "clear.gif"]
    yield ["build", "-o", "x.webp", "--max-size", "60", "--loop", "3", "--jobs", "2", "boats.png", "dawn.png"]
    yield ["build", "-o", "x.y4m", "--size", "40x30", "--fit", "cover", "--once", "boats.png", "dawn.png"]
    yield ["build", "-o", "x.gif", "--ping-pong", "--delay", "0", "boats.png", "dawn.png", "lanterns.png"]
    yield ["sheet", "-o", "sheet.png", "boats.jpg", "boats.png"]
    yield ["settings"]


def run(program, words, folder):
    """Returns what the program says, and {name: bytes} of what is then in the folder."""
    done = subprocess.run([*program, *words], cwd=folder, capture_output=True, timeout=120)
    said = [done.returncode, *(text.replace(b"\r\n", b"\n").decode("utf-8", "replace") for text in (done.stdout, done.stderr))]
    files = {str(path.relative_to(folder)): path.read_bytes() for path in sorted(folder.rglob("*")) if path.is_file()}
    return said, files


def differences(native, windows):
    """Yields a line for each thing that is not the same."""
    for what, one, other in zip(("status", "output", "messages"), native[0], windows[0]):
        if one != other:
            yield f"{what}: {one!r} here, {other!r} there"
    for name in sorted(native[1].keys() | windows[1].keys()):
        one, other = native[1].get(name), windows[1].get(name)
        if one != other:
            yield f"{name}: " + ("only on one side" if one is None or other is None else "other bytes")


def fresh_folder(place, inputs):
    shutil.rmtree(place, ignore_errors=True)
    shutil.copytree(inputs, place)
    return place


def main():
    native_dir, windows_program, work = (pathlib.Path(word).resolve() for word in sys.argv[1:])
    native = native_dir / "hosts/cli/lumafold"
    inputs = fresh_folder(work / "inputs", ROOT / "tests/hosts/pictures")
    (inputs / "narrow").mkdir()
    for folder, size in ((inputs, ("97", "65")), (inputs / "narrow", ("11", "61"))):
        subprocess.run([native_dir / "tools/samples/lumafold_samples", folder, *size], check=True)
    for name in NAMES:
        (inputs / name).parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(inputs / "clear.gif", inputs / f"{name}.gif")

    def compare(number, words):
        here = run([native], words, fresh_folder(work / f"native{number}", inputs))
        there = run([ROOT / "tools/wine-run", windows_program], words, fresh_folder(work / f"windows{number}", inputs))
        found = list(differences(here, there))
        if here[0][0] != 0:
            found.append(f"failed: {here[0][2]}")
        if words[0] != "settings" and len(here[1]) <= sum(path.is_file() for path in inputs.rglob("*")):
            found.append("wrote nothing")
        return words, found

    wrong = 0
    # Most of the time goes into starting and ending programs, so several run at once.
    with concurrent.futures.ThreadPoolExecutor(4) as pool:
        for words, found in pool.map(compare, *zip(*enumerate(cases()))):
            print("same  " if not found else "DIFFER", *words)
            for line in found:
                print("   ", line)
            wrong += bool(found)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
