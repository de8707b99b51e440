#!/usr/bin/env python3
"""Pictures made to break or to stop a program: it ends with one line that names the file, soon, and within bounded
memory. Run by ctest."""
import os
import pathlib
import re
import resource
import shutil
import struct
import subprocess
import tempfile
import unittest
import zlib

LUMAFOLD = os.environ["LUMAFOLD"]
SECONDS = 10  # of processor time, on slow machines too
MEMORY = 2 << 30  # of address space


def png(*chunks):
    data = b"\x89PNG\r\n\x1a\n"
    for kind, body in chunks:
        data += struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))
    return data


def header(width, height, depth=8, colours=2, interlaced=0):
    return b"IHDR", struct.pack(">IIBBBBB", width, height, depth, colours, 0, 0, interlaced)


def zeros(count):
    """So many zero bytes, compressed without ever being there."""
    packer = zlib.compressobj(1)
    block = bytes(1 << 20)
    parts = [packer.compress(block) for _ in range(count >> 20)]
    return b"".join(parts) + packer.compress(bytes(count & (1 << 20) - 1)) + packer.flush()


def png_pictures():
    end, pixel = (b"IEND", b""), (b"IDAT", zlib.compress(bytes(4)))
    yield "promises.png", png(header(16384, 16384), pixel, end)
    yield "interlaced.png", png(header(16384, 16384, 16, 6, 1), pixel, end)
    yield "bomb.png", png(header(6000, 6000), (b"IDAT", zeros((3 * 6000 + 1) * 6000)), end)
    for kind in (b"iCCP", b"zTXt"):
        yield f"{kind.decode()}.png", png(header(1, 1), (kind, b"x\0\0" + zeros(100 << 20)), (b"IDAT", b""), end)
    yield "chunks.png", png(header(1, 1), *[(b"tEXt", b"a\0b")] * 50000, (b"IDAT", b"?"), end)
    yield "trickle.png", png(header(9000, 9000), *[(b"IDAT", b"")] * 50000, end)
    yield "long.png", png(header(1, 1)) + struct.pack(">I", 0x7FFFFFFF) + b"IDAT" + bytes(100)


def gif_head(width, height, colours=0x80):
    return b"GIF89a" + struct.pack("<HHBBB", width, height, colours, 0, 0) + bytes(6 if colours else 0)


def gif_frame(left, top, width, height, data, interlaced=0):
    blocks = b"".join(bytes([len(data[at:at + 255])]) + data[at:at + 255] for at in range(0, len(data), 255))
    return b"," + struct.pack("<HHHHB", left, top, width, height, interlaced) + b"\x02" + blocks + b"\0"


def lzw_of_one_colour(codes):
    """So many codes after the first, each a pixel longer than the one before up to 4091: a few kilobytes that unpack to
    millions of pixels."""
    clear, first = 4, 0
    out, held, bits, width, following = bytearray(), clear | first << 3, 6, 3, 6
    for _ in range(codes):
        held |= min(following, 4095) << bits
        bits += width
        if following < 4096:
            following += 1
            if following == 1 << width and width < 12:
                width += 1
        out += (held & (1 << bits // 8 * 8) - 1).to_bytes(bits // 8, "little")
        held, bits = held >> bits // 8 * 8, bits % 8
    return bytes(out) + bytes([held])


def gif_pictures():
    pixel = gif_frame(0, 0, 1, 1, b"\x44\x01")
    yield "far.gif", gif_head(1, 1) + gif_frame(65535, 65535, 65535, 65535, b"\x44\x01") + b";"
    yield "promises.gif", gif_head(16384, 16384) + gif_frame(0, 0, 16384, 16384, b"\x44\x01", 0x40) + b";"
    yield "bomb.gif", gif_head(16384, 16384) + gif_frame(0, 0, 16384, 16384, lzw_of_one_colour(60000)) + b";"
    yield "remarks.gif", gif_head(1, 1) + b"!\xfe\x01a\0" * 1000000 + b";"
    yield "endless.gif", gif_head(1, 1) + b"!\xfe" + (b"\xff" + bytes(255)) * 40000
    yield "colourless.gif", gif_head(1, 1, 0) + pixel + b";"
    yield "nothing.gif", gif_head(0, 0) + b";"


def segment(marker, body):
    return b"\xff" + bytes([marker]) + struct.pack(">H", len(body) + 2) + body


def jpeg_head(width, height, frame=0xC2, components=1):
    """Progressive. The only code of each table is one bit long: an end of blocks where it is for such runs."""
    tables = b"".join(segment(0xC4, bytes([kind]) + b"\x01" + bytes(15) + symbol)
                      for kind, symbol in ((0x00, b"\0"), (0x10, b"\xe0")))
    parts = b"".join(bytes([number + 1, 0x11, 0]) for number in range(components))
    return (b"\xff\xd8" + segment(0xDB, b"\0" + b"\x01" * 64) + tables +
            segment(frame, struct.pack(">BHHB", 8, height, width, components) + parts))


def scan(first, last, data, high=0, low=0):
    return segment(0xDA, b"\x01\x01\x00" + bytes([first, last, high << 4 | low])) + data


def jpeg_pictures():
    end = b"\xff\xd9"
    yield "empty.jpg", jpeg_head(0, 0) + end
    yield "promises.jpg", jpeg_head(16384, 16384) + scan(0, 0, bytes(10)) + end
    # A run of 16384 to 32767 blocks to each 15 bits: ever the same coefficients again.
    for name, side, scans in (("scans", 4000, 5000), ("scans_large", 16000, 400), ("scans_small", 8, 1000)):
        blocks = ((side + 7) // 8) ** 2
        run = bytes(2 + blocks // 16384 * 2)
        yield f"{name}.jpg", jpeg_head(side, side) + scan(0, 0, bytes(blocks // 8 + 1)) + scan(1, 63, run) * scans + end
    yield "segments.jpg", b"\xff\xd8" + segment(0xE1, b"Exif\0\0" + bytes(65000)) * 1000
    yield "comments.jpg", b"\xff\xd8" + segment(0xFE, b"") * 1000000


def bmp(width, height, bits, packing, data=b"", header_bytes=40, offset=54, used=0):
    return (struct.pack("<2sIIIIiiHHIIIIII", b"BM", 0, 0, offset, header_bytes, width, height, 1, bits, packing, 0, 0, 0,
                        used, 0) + data)


def bmp_pictures():
    yield "promises.bmp", bmp(16384, -16384, 32, 0)
    yield "offset.bmp", bmp(1, 1, 24, 0, bytes(4), offset=0xFFFFFFFF)
    yield "header.bmp", bmp(1, 1, 24, 0, bytes(4), header_bytes=0xFFFFFFFF)
    yield "colours.bmp", bmp(1, 1, 8, 0, bytes(4), used=0xFFFFFFFF)
    yield "packed.bmp", bmp(16384, 16384, 8, 1, bytes(1024) + b"\0\2\xff\xff" * 1000)


def tiff(width, height, *entries, data=b""):
    """One strip of 8-bit RGB behind the directory, unless the entries say otherwise: (tag, type, count, value)."""
    tags = {256: (4, 1, width), 257: (4, 1, height), 258: (3, 1, 8), 259: (3, 1, 1), 262: (3, 1, 2), 273: (4, 1, 0),
            277: (3, 1, 3), 278: (4, 1, height), 279: (4, 1, len(data))}
    tags.update({tag: rest for tag, *rest in entries})
    if tags[273] == (4, 1, 0):
        tags[273] = 4, 1, 8 + 2 + 12 * len(tags) + 4
    directory = b"".join(struct.pack("<HHII", tag, *tags[tag]) for tag in sorted(tags))
    return b"II*\0" + struct.pack("<IH", 8, len(tags)) + directory + bytes(4) + data


def tiff_pictures():
    yield "huge.tiff", tiff(0xFFFFFFFF, 0xFFFFFFFF)
    yield "promises.tiff", tiff(16384, 16384, data=b"data")
    yield "strips.tiff", tiff(16384, 16384, (273, 4, 16384, 0), (278, 4, 1, 1), (279, 4, 16384, 0))
    yield "bomb.tiff", tiff(6000, 6000, (259, 3, 1, 8), data=zeros(3 * 6000 * 6000))
    yield "samples.tiff", tiff(100, 100, (258, 3, 65535, 8), (277, 3, 1, 65535))
    yield "profile.tiff", tiff(1, 1, (34675, 7, 0x7FFFFFFF, 8))
    yield "loop.tiff", b"II*\0" + struct.pack("<IH", 8, 0) + struct.pack("<I", 8)


def webp(*chunks):
    body = b"WEBP" + b"".join(kind + struct.pack("<I", len(data)) + data + bytes(len(data) % 2) for kind, data in chunks)
    return b"RIFF" + struct.pack("<I", len(body)) + body


def webp_pictures():
    pixels = b"\x2f" + struct.pack("<I", 16383 | 16383 << 14) + bytes(20)
    canvas = b"\x02" + bytes(3) + b"\xff" * 6
    yield "huge.webp", webp((b"VP8X", canvas), (b"ANIM", bytes(6)), (b"ANMF", bytes(16) + b"VP8L" + bytes(8)))
    yield "promises.webp", webp((b"VP8L", pixels))
    yield "frames.webp", webp((b"VP8X", canvas), (b"ANIM", bytes(6)), *[(b"ANMF", bytes(16))] * 50000)
    yield "chunks.webp", webp((b"VP8X", bytes(10)), *[(b"ICCP", b"")] * 100000)


def heif_pictures():
    """Real ones, whose boxes say another size than their data."""
    seeds = pathlib.Path(__file__).resolve().parents[1] / "fuzz" / "seeds" / "pictures"
    for name in ("turned.heic", "profile.avif"):
        data = (seeds / name).read_bytes()
        for side in (0x7FFFFFFF, 0):
            changed, count = re.subn(rb"(ispe\0{4}).{8}", lambda found: found[1] + struct.pack(">II", side, side), data,
                                     flags=re.DOTALL)
            assert count > 0
            yield f"{side}-{name}", changed


def other_files():
    yield "text", b"picture\n" * 1000000
    yield "signatures", b"\x89PNG\r\n\x1a\n" * 100000


class HostilePictures(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="lumafold-")
        self.addCleanup(shutil.rmtree, self.folder)

    def check(self, name):
        """Builds from it, and looks at what the program says and how much processor time it takes."""
        def limit():
            resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
            resource.setrlimit(resource.RLIMIT_CPU, (6 * SECONDS, 6 * SECONDS))

        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        done = subprocess.run([LUMAFOLD, "build", "--quiet", "--memory-limit", "300", "-o", "x.gif", name], cwd=self.folder,
                              capture_output=True, text=True, preexec_fn=limit)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertRegex(done.stderr, f"^lumafold: ({re.escape(name)}: |the animation would need .*; the limit is ).*\n$")
        self.assertLess(after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime, SECONDS)
        self.assertFalse(os.path.exists(os.path.join(self.folder, "x.gif")))

    def test_files(self):
        for pictures in (png_pictures, gif_pictures, jpeg_pictures, bmp_pictures, tiff_pictures, webp_pictures,
                         heif_pictures, other_files):
            for name, data in pictures():
                with self.subTest(name=name):
                    path = pathlib.Path(self.folder, name)
                    path.write_bytes(data)
                    self.check(name)
                    path.unlink()

    def test_what_is_no_file(self):
        os.mkdir(os.path.join(self.folder, "folder.png"))
        for name in ("folder.png", "missing.png", "/dev/zero", "/proc/self/mem"):
            with self.subTest(name=name):
                self.check(name)


if __name__ == "__main__":
    unittest.main()
