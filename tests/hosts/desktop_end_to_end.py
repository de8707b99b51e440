#!/usr/bin/env python3
"""Makes animations as a person would, from pictures in a folder to saved files, with the desktop host and the plug-in's
own dialogs; each file must have the very bytes that the native command line writes for the same pictures and settings.
Leaves pictures of the windows in out/screenshots.

Usage: tests/hosts/desktop_end_to_end.py NATIVE_DIR HOST_PROGRAM WORK_FOLDER
"""
import json
import pathlib
import shutil
import struct
import subprocess
import sys
import zlib

from file_names import DEEP, NAMES

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCREENSHOTS = ROOT / "out/screenshots"
MATTE = "#0AC85A"
OVERRIDE = {"transition": 102, "delay": 103, "pause": 104}
MAIN = ["TransitionType", "TransitionDelay", "TransitionPause", "TransitionCustompalette", "TransitionPalette",
        "TransitionDither", "TransitionTruecolour", "Supercompress"]

# Each build begins where the one before it ended: settings and list stay. `add` has the pictures of one choice together,
# whose last name ends up first. `own` overrides the pictures of these numbers.
BUILDS = [
    dict(save=["iris.gif"], add=[["dawn.png"], ["lanterns.png"], ["boats.png"]], main={
             "TransitionType": "Soft iris (ellipse)", "TransitionDelay": 7, "TransitionPause": 90},
         own={2: ["Silent movie", 3, 55]}, advanced={"TransitionIrisStep": 10, "TransitionSilentMovieBackground": "#FF8000"}),
    dict(save=["kept.gif"], keep=True, own={3: ["Burp"]}, main={
             "TransitionCustompalette": 0, "TransitionPalette": "216-color safe", "TransitionDither": 0}),
    dict(save=["plain.gif"], add=[["tiny.png", "line.bmp", "boats.jpg", "clear.gif"]], main={
             "TransitionType": "Paintball", "Supercompress": 0, "TransitionDither": 1,
             "TransitionPalette": "Black and white"},
         own={4: ["None", 1, 0]}, advanced={"RandomSeed": 777, "TransitionPaintballSize": 6}),
    dict(save=["test.gif"], keep=True, test=True, main={"Supercompress": 1, "TransitionCustompalette": 1}),
    dict(save=["again.gif"], keep=True, main={}),
    dict(save=["single.gif"], add=[["clear.gif"]], main={"TransitionType": "Hurricane", "TransitionPause": 12}),
    dict(save=["dot.gif"], add=[["dot.gif"]], main={"TransitionType": "Quad (contract)"}),
    dict(save=["true.png", "true.mng"], flags=3, add=[["boats.jpg"], ["clear.gif"], ["tiny.png"]],
         main={"TransitionType": "Liquid metal", "TransitionTruecolour": 1, "Supercompress": 0},
         own={1: ["Spikes (horizontal)", 9, 31]}, advanced={"TransitionLiquidMetalStep": 25, "TransitionSpikeCount": 3}),
    dict(save=["changes.png"], flags=3, keep=True, main={"Supercompress": 1}),
    dict(save=["few.mng", "few.png"], flags=3, keep=True, main={
             "TransitionTruecolour": 0, "TransitionCustompalette": 0, "TransitionPalette": "Sixteen-color Windows"}),
    dict(save=["tested.mng"], flags=3, keep=True, test=True, main={"TransitionTruecolour": 1}),
]

# A script, its status, and the line that must tell why.
FAILURES = [
    ("build", 1, "line 1: build: no dialog is open"),
    ("open-dialog", 1, "at the end: the dialog is still open"),
    ("open-dialog\nremove-all\nbuild", 1, "line 3: build: the button is disabled"),
    ("open-dialog\nselect-item 9", 1, "line 2: select-item 9: there is no such item"),
    ("open-dialog\nset TransitionType Sideways", 1, "line 2: set TransitionType Sideways: the list has no such entry"),
    ("open-dialog\nadd none.png\nwait 1", 1, "line 3: wait 1: this message was shown: "),
    ("open none.gif", 1, "at the end: this message was shown: "),
    ("open inputs\\clear.gif\nsave-as none\\x.gif\nwait 1", 1, "line 3: wait 1: this message was shown: "),
    ("open inputs\\clear.gif\nexpect-frames 2", 1, "line 2: expect-frames 2: found 1 frame, 33x21"),
    ("\nsave-as x.gif # nothing is there", 1, "line 2: save-as x.gif: nothing is open"),
    # Of two folders, which the plug-in takes one after the other.
    ("open-dialog\nremove-all\nadd inputs\\clear.gif windows\\dot.gif\nselect-item 2\nselect-item 3", 1,
     "line 5: select-item 3: there is no such item"),
    ('add "x', 2, "line 1: a quote is not closed"),
]


def write_png(path, width, height, pixel):
    def chunk(name, data):
        return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))

    rows = b"".join(b"\0" + b"".join(bytes(pixel(x, y)) for x in range(width)) for y in range(height))
    path.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)) +
                     chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


def make_inputs(native_dir, folder):
    shutil.rmtree(folder, ignore_errors=True)
    shutil.copytree(ROOT / "tests/hosts/pictures", folder)
    subprocess.run([native_dir / "tools/samples/lumafold_samples", folder, "97", "65"], check=True)
    write_png(folder / "tiny.png", 7, 5, lambda x, y: (36 * x, 60 * y, 200, 255 if x != y else 0))
    subprocess.run([native_dir / "hosts/cli/lumafold", "build", "-q", "--size", "33x1", "--true-colour", "-o", f"{folder}/line/",
                    folder / "dawn.png"], check=True)
    (folder / "line/frame-0001.bmp").rename(folder / "line.bmp")
    shutil.rmtree(folder / "line")
    (folder / "dot.gif").write_bytes(b"GIF89a\1\0\1\0\x80\0\0\x20\x90\xE0\0\0\0,\0\0\0\0\1\0\1\0\0\2\2D\1\0;")


class Person:
    """Knows what the dialogs hold by now, and so what the command line must be told."""

    def __init__(self):
        self.main = {"TransitionType": 0, "TransitionDelay": 5, "TransitionPause": 100, "TransitionCustompalette": 1,
                     "TransitionPalette": 6, "TransitionDither": 1, "TransitionTruecolour": 0, "Supercompress": 1}
        self.advanced, self.pictures, self.own = {}, [], {}

    def take(self, build):
        self.main |= build["main"]
        self.advanced |= build.get("advanced", {})
        if not build.get("keep"):
            self.pictures = [name for names in build["add"] for name in sorted(names, reverse=True)]
        # The list that is kept between two openings is one of files; overrides go with the dialog.
        self.own = {number: words + self.usual()[len(words):] for number, words in build.get("own", {}).items()}

    def usual(self):
        return [self.main[key] for key in ("TransitionType", "TransitionDelay", "TransitionPause")]

    def words(self, build, name):
        main = self.main
        words = ["build", "--json", "-o", name, "--matte", MATTE]
        # Naming a palette means that none is computed, so the switch comes after it.
        words += ["--palette", main["TransitionPalette"]] + ["--custom-palette"] * main["TransitionCustompalette"]
        words += ["--dither" if main["TransitionDither"] else "--no-dither"]
        words += ["--true-colour"] * main["TransitionTruecolour"]
        words += ["--supercompress" if main["Supercompress"] else "--no-supercompress"]
        words += ["--test-build"] * build.get("test", False)
        for key, value in self.advanced.items():
            if str(value).startswith("#"):
                value = int(value[5:7] + value[3:5] + value[1:3], 16)
            words += ["--set", f"{key}={value}"]
        for number, picture in enumerate(self.pictures, 1):
            transition, delay, pause = self.own.get(number, self.usual())
            words += ["--transition", transition, "--delay", delay, "--pause", pause, "../inputs/" + picture]
        return [str(word) for word in words]


def quoted(*words):
    return " ".join(f'"{word}"' if " " in str(word) else str(word) for word in words)


def steps_of(build, folder, told, shows):
    """Yields the steps of one build, with pictures of the dialogs where it is one that `shows` them."""
    yield quoted("capabilities", build.get("flags", 1))
    yield "open-dialog"
    if not build.get("keep"):
        yield "remove-all"
        for names in build["add"]:
            yield quoted("add", *(f"inputs\\{name}" for name in names))
    for key in MAIN:
        if key in build["main"]:
            yield quoted("set", key, build["main"][key])
    if "advanced" in build:
        yield "advanced"
        for key, value in build["advanced"].items():
            yield quoted("set", key, value)
        if shows:
            yield f"screenshot {folder}\\host-advanced.png"
        yield "ok"
    for number, words in build.get("own", {}).items():
        if shows:
            yield from (f"override {number}", f"screenshot {folder}\\host-override.png", "cancel")
        yield quoted("transition", number, *words)
    if shows:
        yield f"screenshot {folder}\\host-dialog.png"
    if build.get("test"):
        yield from ("test", 'expect-title "[test]"', "cancel")
    else:
        yield from ("build", 'expect-title "* Animation"')
    for name in build["save"]:
        yield f"save-as {folder}\\{name}"
        yield f'expect-title "{name} "'
        if name.endswith(".gif"):
            yield quoted("open", f"{folder}\\{name}")
            yield quoted("expect-frames", told[name]["frames"])
            yield quoted("expect-size", told[name]["width"], told[name]["height"])
            yield "close"


def script_of(told):
    # The matte colour that was saved last lies behind what is clear in the pictures that are read.
    yield from ("open-dialog", f"set TransitionMattcolour {MATTE}", "cancel")
    for build in BUILDS:
        yield from steps_of(build, "windows", told, build is BUILDS[0])
    builds = sum(not build.get("test") for build in BUILDS)
    yield quoted("expect-documents", builds + 1)
    yield from ("select 1", "frame 12", "play", "screenshot windows\\host.png window", "pause")
    yield from ("close", quoted("expect-documents", builds))


def names_script():
    """Steps for files of all kinds of names: opened, saved, their frames saved, and dropped into the plug-in's list."""
    for name in NAMES:
        path = "names\\" + name.replace("/", "\\")
        yield from (f'open "{path}.gif"', 'expect-size 33 21', f'save-as "{path}.x.png"', f'save-frames "{path}.d"')
        yield from ("close", f'open "{path}.x.png"', f'expect-title "{name.split("/")[-1]}.x.png - "', "close")
    yield from ("open-dialog", "remove-all", "cancel")
    yield "drop " + " ".join('"names\\' + name.replace("/", "\\") + '.gif"' for name in NAMES)
    yield from (f"expect-items {len(NAMES)}", "set TransitionType None", "build", f"expect-frames {len(NAMES)}")
    yield from ("open-dialog", f"expect-items {len(NAMES)}", "cancel")


def dots_script():
    yield from ("screenshot windows\\host-144-welcome.png", "open windows\\iris.gif", "frame 9", "wait 300")
    yield from ("screenshot windows\\host-144.png", "open-dialog", "screenshot windows\\host-144-dialog.png", "cancel")


def name_findings(work):
    """Each name got its file and its frame, and both show what was opened."""
    for name in NAMES:
        saved, frame = work / f"names/{name}.x.png", work / f"names/{name}.d/frame-0000.png"
        good = saved.is_file() and [path.name for path in frame.parent.iterdir()] == ["frame-0000.png"]
        yield good, f"{name}: " + ("saved, and its frame" if good else "not there")


def run_windows(host, work, scripts):
    """Runs the scripts one after the other on one screen; returns their statuses and what they complained about. The last
    one has a screen of 144 dots an inch."""
    lines = ["@echo off", 'rmdir /s /q "%APPDATA%\\Brackenfield" 2>nul']
    for number, script in enumerate(scripts):
        if number + 1 == len(scripts):
            lines.append('reg add "HKCU\\Control Panel\\Desktop" /v LogPixels /t REG_DWORD /d 144 /f >nul')
        (work / f"script-{number}.txt").write_text(script, newline="\r\n", encoding="utf-8")
        (work / f"log-{number}.txt").unlink(missing_ok=True)
        lines.append(f'"{host}" --script script-{number}.txt --log log-{number}.txt')
        lines.append("echo %errorlevel%")
    (work / "run.bat").write_text("\r\n".join(lines) + "\r\n", newline="")
    done = subprocess.run([ROOT / "tools/wine-run", "--screen", "cmd", "/c", "run.bat"], cwd=work, text=True,
                          stdout=subprocess.PIPE, timeout=200)
    statuses = [int(line) for line in done.stdout.split()]
    return [(status, (work / f"log-{number}.txt").read_text(encoding="utf-8", errors="replace").strip())
            for number, status in enumerate(statuses)]


def start_findings(host, work):
    """The program fails where no screen is, and finds the plug-in where its own path has more than 260 letters."""
    deep = work / "names" / DEEP
    for name in (host.name, "lumafold.dll"):
        shutil.copy(host.with_name(name), deep)
    (work / "deep.txt").write_text("open-dialog\ncancel\n")
    for status, words in ((1, [host]), (0, ["--screen", deep / host.name, "--script", "deep.txt"])):
        done = subprocess.run(["env", "-u", "DISPLAY", ROOT / "tools/wine-run", *words], cwd=work, timeout=60)
        yield done.returncode == status, f"{words[:2]}: {done.returncode}"


def compare(native, windows):
    """Yields a line for each file."""
    for build in BUILDS:
        for name in build["save"]:
            one = (native / name).read_bytes()
            other = (windows / name).read_bytes() if (windows / name).is_file() else b""
            yield one == other, f"{name}, {len(one)} bytes" + ("" if one == other else f", {len(other)} there")


def main():
    native_dir, host, work = (pathlib.Path(word).resolve() for word in sys.argv[1:])
    native, windows = work / "native", work / "windows"
    for folder in (native, windows):
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
    make_inputs(native_dir, work / "inputs")
    shutil.rmtree(work / "names", ignore_errors=True)
    for name in NAMES:
        (work / f"names/{name}").parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(work / "inputs/clear.gif", work / f"names/{name}.gif")
    person, told = Person(), {}
    for build in BUILDS:
        person.take(build)
        for name in build["save"]:
            done = subprocess.run([native_dir / "hosts/cli/lumafold", *person.words(build, name)], cwd=native, check=True,
                                  stdout=subprocess.PIPE)
            told[name] = json.loads(done.stdout)

    scripts = ["\n".join(script_of(told)) + "\n", *(text + "\n" for text, _, _ in FAILURES),
               *("\n".join(steps) + "\n" for steps in (names_script(), dots_script()))]
    results = run_windows("Z:" + str(host).replace("/", "\\"), work, scripts)
    findings = [(len(results) == len(scripts), f"{len(results)} of {len(scripts)} scripts ran")]
    findings += [(results[0] == (0, ""), f"the long script: {results[0]}")]
    findings += [(result == (0, ""), f"{what}: {result}") for what, result in
                 zip(("names", "144 dots an inch"), results[-2:])]
    findings += name_findings(work)
    findings += start_findings(host, work)
    findings += compare(native, windows)
    for (script, status, why), found in zip(FAILURES, results[1:]):
        lines = found[1].split("\n")
        good = found[0] == status and why in lines[-1] and all(line.startswith("lumafold-host: ") for line in lines)
        findings.append((good, f"{script!r}: {found}"))
    SCREENSHOTS.mkdir(parents=True, exist_ok=True)
    for picture in windows.glob("host*.png"):
        shutil.copy(picture, SCREENSHOTS)
    for good, text in findings:
        print("good " if good else "WRONG", text)
    return 0 if all(good for good, _ in findings) else 1


if __name__ == "__main__":
    sys.exit(main())
