#!/usr/bin/env python3
"""Writes the manual page lumafold(1) of what the program says about itself, so that the page knows every option.

Usage: tools/packaging/man_page.py PROGRAM DATE > lumafold.1
"""
import json
import re
import subprocess
import sys

SUMMARY = "turn still pictures into looping animations"
DESCRIPTION = """\
Lumafold carries each picture of a list into the next by one of 33 transitions, reduces all frames to one palette, and
writes the animation as a GIF, an animated PNG, an MNG, an animated WebP, a plain film, or as one bitmap for each frame.
"""
EXAMPLES = [
    ("Two pictures to a GIF by a soft ellipse, each standing still for a second and a half:",
     'lumafold build --transition "Soft iris (ellipse)" --pause 150 a.png b.jpg -o loop.gif'),
    ("An animated PNG in true colour:", "lumafold build a.png b.png -o loop.png --true-colour"),
    ("Photos made smaller, to a WebP that may lose what is hardly seen:",
     "lumafold build *.jpg --max-size 600 --quality 80 -o photos.webp"),
    ("A film, by way of another program:",
     "lumafold build a.png b.png -o - --format y4m | ffmpeg -i - film.mp4"),
    ("How large a GIF in a fixed palette would be:",
     'lumafold build a.png b.png --palette "216-color safe" --no-dither --estimate'),
    ("What each transition does with two pictures:", "lumafold sheet a.png b.png -o all.png"),
    ("Settings kept in a file, and used:",
     "lumafold settings --set TransitionIrisStep=10 --write my.settings\n"
     "lumafold build --config my.settings a.png b.png -o loop.gif"),
]
MEANINGS_AT = 26  # the column
COMMAND = re.compile(r"^  (\w+) {2,}(\S.*)$")
HEADING = re.compile(r"^(\S.*):$")


class Page:
    """Lines of the manual page, with what a line of text must not begin with or hold made harmless."""

    def __init__(self):
        self.lines = []

    @staticmethod
    def escaped(text):
        text = text.replace("\\", "\\e").replace("-", "\\-").replace("'", "\\(aq").replace("`", "\\(ga")
        return "\\&" + text if text.startswith(".") else text

    def request(self, name, *words):
        quoted = ['"' + self.escaped(word).replace('"', "\\(dq") + '"' for word in words]
        self.lines.append(" ".join(["." + name, *quoted]))

    def text(self, text):
        # A new line after each sentence, as troff likes it.
        for sentence in re.split(r"(?<=[.:]) +(?=[A-Z])", " ".join(text.split())):
            self.lines.append(self.escaped(sentence))

    def item(self, term, text):
        self.request("TP")
        self.request("B", term)
        self.text(text)


def told(program, *words):
    return subprocess.run([program, *words], check=True, capture_output=True, text=True).stdout


def parse_help(text):
    """Returns (usages, paragraphs, groups): lines of how to call it, prose, and [(heading, [[option, meaning]])]."""
    usages, paragraphs, groups = [], [], []
    for block in re.split(r"\n\s*\n", text.strip("\n")):
        lines = block.split("\n")
        if lines[0].startswith("usage: "):
            usages = [line.removeprefix("usage: ").strip() for line in lines]
        elif HEADING.match(lines[0]) and len(lines) > 1:
            options = []
            for line in lines[1:]:
                if line.startswith("  -"):
                    aligned = line[MEANINGS_AT - 1:MEANINGS_AT] == " "
                    at = MEANINGS_AT if aligned else len(line)
                    options.append([line[:at].strip(), line[at:]])
                else:
                    options[-1][1] += " " + line.strip()
            groups.append((HEADING.match(lines[0])[1], options))
        elif not lines[0].startswith("  "):
            paragraphs.append(block)
    return usages, paragraphs, groups


def write_command(page, program, name):
    _, paragraphs, groups = parse_help(told(program, name, "--help"))
    page.request("SS", f"lumafold {name}")
    for number, paragraph in enumerate(paragraphs):
        if paragraph.startswith("Exit status:"):
            continue  # that has a section of its own
        if number > 0:
            page.request("PP")
        page.text(paragraph)
    for heading, options in groups:
        if len(groups) > 1:
            page.request("PP")
            page.request("I", heading)
        for option, meaning in options:
            page.item(option, meaning)


def commands(program):
    return dict(found.groups() for found in map(COMMAND.match, told(program, "--help").split("\n")) if found)


def write_lists(page, program):
    page.request("SH", "TRANSITIONS")
    page.text("By row and name; either tells a transition to the program.")
    for line in told(program, "transitions").split("\n")[1:]:
        if line:
            row, rest = line.split(maxsplit=1)
            name, settings = re.split(r"  +", rest.strip(), maxsplit=1)
            page.item(f"{row}  {name}", "reads " + settings.replace(" ", ", ") if settings != "-" else "has no settings")
    page.request("SH", "PALETTES")
    for line in told(program, "palettes").split("\n")[1:]:
        if line:
            number, name, colours, _ = re.split(r"  +", line.strip())
            page.item(f"{number}  {name}", f"{colours} colours")
    page.request("SH", "SETTINGS")
    page.text("For --set and settings files.")
    for setting in json.loads(told(program, "settings", "--json")):
        shown = "0x{:06X}".format if setting["kind"] == "colour" else str
        default, least, most = (shown(setting[key]) for key in ("default", "minimum", "maximum"))
        page.item(setting["key"], f"{setting['meaning']} (default {default}, range {least} to {most})")


def main():
    program, date = sys.argv[1:]
    version = told(program, "--version").split()[1]
    usages, _, _ = parse_help(told(program, "--help"))
    page = Page()
    page.request("TH", "LUMAFOLD", "1", date, f"lumafold {version}", "User Commands")
    page.request("nh")  # names of settings are to be found, and copied, whole
    page.lines.append(".ad l")
    page.request("SH", "NAME")
    page.text(f"lumafold - {SUMMARY}")
    page.request("SH", "SYNOPSIS")
    for number, usage in enumerate(usages):
        if number > 0:
            page.request("br")
        page.request("B", usage)
    page.request("SH", "DESCRIPTION")
    page.text(DESCRIPTION)
    page.request("SH", "COMMANDS")
    for name, meaning in commands(program).items():
        page.item(name, meaning)
    page.request("SH", "OPTIONS")
    for name in ("build", "sheet", "settings"):
        write_command(page, program, name)
    write_lists(page, program)
    page.request("SH", "EXIT STATUS")
    for status, meaning in (("0", "everything was written"), ("1", "the build failed"),
                            ("2", "a mistake on the command line"), ("130", "interrupted; no half-written file is left")):
        page.item(status, meaning)
    page.request("SH", "EXAMPLES")
    for number, (text, example) in enumerate(EXAMPLES):
        if number > 0:
            page.request("PP")
        page.text(text)
        for command in ("PP", "RS", "nf"):
            page.request(command)
        page.lines += [page.escaped(line) for line in example.split("\n")]
        for command in ("fi", "RE"):
            page.request(command)
    print("\n".join(page.lines))


if __name__ == "__main__":
    main()
