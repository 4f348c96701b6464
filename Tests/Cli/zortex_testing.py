"""What the tests of the program share: running it, and PNG and native files written and read without it."""

import os
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib

ZORTEX = os.environ["ZORTEX"]
DATA = os.environ["ZORT_TEST_DATA"]

GREY, RGB, PALETTE, GREY_ALPHA, RGBA = 0, 2, 3, 4, 6
CHANNELS = {GREY: 1, RGB: 3, PALETTE: 1, GREY_ALPHA: 2, RGBA: 4}
PNG_SIGNATURE = b"\x89PNG\r\n\x1a\n"

PHOTO = os.path.join(DATA, "astronaut_256.png")

MAGIC = 0x03524F5A
UNORM8, UNORM16, FLOAT = 0, 4, 12


class ProgramTest(unittest.TestCase):
    """Each test has a folder of its own, in which nothing but what it knows of may be left."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content)
        return self.path(name)

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def files(self):
        return sorted(os.listdir(self.folder))

    def run_program(self, *arguments, **options):
        result = subprocess.run([ZORTEX, *arguments], cwd=self.folder, capture_output=True, text=True, timeout=120, **options)
        self.assertIn(result.returncode, (0, 1, 2), f"{arguments}: {result.stderr}")
        return result

    def succeed(self, *arguments):
        result = self.run_program(*arguments)
        self.assertEqual((result.returncode, result.stderr), (0, ""), arguments)
        return result.stdout

    def refuse(self, code, pattern, *arguments, **options):
        """The program fails with one line that names the reason, and leaves the folder as it was."""
        before = {name: self.read(name) for name in self.files() if os.path.isfile(self.path(name))}
        result = self.run_program(*arguments, **options)
        self.assertEqual(result.returncode, code, f"{arguments}: {result.stdout} {result.stderr}")
        self.assertRegex(result.stderr, r"\Azortex: " + pattern)
        self.assertEqual(result.stdout, "", arguments)
        if code == 1:
            self.assertEqual(result.stderr.count("\n"), 1, result.stderr)
        after = {name: self.read(name) for name in self.files() if os.path.isfile(self.path(name))}
        self.assertEqual(before.keys(), after.keys(), f"files left by {arguments}")
        self.assertEqual(before, after, arguments)


def chunk(name, content):
    return struct.pack(">I", len(content)) + name + content + struct.pack(">I", zlib.crc32(name + content))


def interlaced_rows(width, height, bits, pixels):
    """The rows of the seven passes. `pixels` has one tuple of bit strings a pixel."""
    for x0, y0, dx, dy in ((0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2)):
        for y in range(y0, height, dy):
            row = [pixels[y * width + x] for x in range(x0, width, dx)]
            if row:
                yield pack_bits(row, bits)


def pack_bits(values, bits):
    """Numbers of `bits` bits, the first one at the top of the first byte."""
    text = "".join(format(value, f"0{bits}b") for value in values)
    text += "0" * (-len(text) % 8)
    return bytes(int(text[i:i + 8], 2) for i in range(0, len(text), 8))


def make_png(width, height, colour, depth, values, palette=None, transparent=None, extra=b"", interlace=False):
    """`values` are channel values in pixel order."""
    count = CHANNELS[colour]
    if interlace:
        bits = depth * count
        pixels = [int("".join(format(v, f"0{depth}b") for v in values[i:i + count]), 2) for i in range(0, len(values), count)]
        rows = interlaced_rows(width, height, bits, pixels)
    else:
        rows = (pack_bits(values[y * width * count:(y + 1) * width * count], depth) for y in range(height))
    raw = b"".join(b"\0" + row for row in rows)
    header = struct.pack(">IIBBBBB", width, height, depth, colour, 0, 0, 1 if interlace else 0)
    parts = [PNG_SIGNATURE, chunk(b"IHDR", header), extra]
    if palette is not None:
        parts.append(chunk(b"PLTE", bytes(palette)))
    if transparent is not None:
        parts.append(chunk(b"tRNS", bytes(transparent)))
    return b"".join(parts + [chunk(b"IDAT", zlib.compress(raw)), chunk(b"IEND", b"")])


def png_chunks(content):
    assert content[:8] == PNG_SIGNATURE
    position = 8
    while position < len(content):
        size, name = struct.unpack_from(">I4s", content, position)
        yield name, content[position + 8:position + 8 + size]
        position += 12 + size


def unfilter(kind, row, previous, step):
    for i, value in enumerate(row):
        left = row[i - step] if i >= step else 0
        up = previous[i]
        corner = previous[i - step] if i >= step else 0
        estimate = left + up - corner
        paeth = min((left, up, corner), key=lambda candidate: abs(estimate - candidate))
        row[i] = (value + (0, left, up, (left + up) // 2, paeth)[kind]) & 255


def read_png(content):
    """Width, height, colour, depth, values in pixel order, and the set of chunk names. For 8 and 16 bits, not interlaced."""
    chunks = list(png_chunks(content))
    width, height, depth, colour, _, _, interlace = struct.unpack(">IIBBBBB", chunks[0][1])
    assert depth >= 8 and interlace == 0
    raw = zlib.decompress(b"".join(body for name, body in chunks if name == b"IDAT"))
    step = CHANNELS[colour] * depth // 8
    size = width * step
    previous = bytearray(size)
    image = bytearray()
    for y in range(height):
        row = bytearray(raw[y * (size + 1) + 1:(y + 1) * (size + 1)])
        unfilter(raw[y * (size + 1)], row, previous, step)
        image += row
        previous = row
    values = list(image) if depth == 8 else [value for (value,) in struct.iter_unpack(">H", bytes(image))]
    return width, height, colour, depth, values, {name for name, _ in chunks}


def layout(letters, *bits):
    return int.from_bytes(letters.encode().ljust(4, b"\0") + bytes(bits).ljust(4, b"\0"), "little")


RGBA8888 = layout("rgba", 8, 8, 8, 8)


def make_native(pixel_format, width, height, pixels, channel_type=UNORM8, space=0, flags=0, depth=1, surfaces=1, faces=1, levels=1,
                blocks=()):
    """`blocks` are metadata: fourCC, key, bytes."""
    metadata = b"".join(struct.pack("<III", four_cc, key, len(data)) + data for four_cc, key, data in blocks)
    header = struct.pack("<IIQIIIIIIIII", MAGIC, flags, pixel_format, space, channel_type, height, width, depth, surfaces, faces,
                         levels, len(metadata))
    return header + metadata + bytes(pixels)


def read_native(content):
    """The header's fields by name, and the pixels."""
    names = ("magic", "flags", "format", "space", "type", "height", "width", "depth", "surfaces", "faces", "levels", "metadata")
    header = dict(zip(names, struct.unpack_from("<IIQIIIIIIIII", content)))
    assert header["magic"] == MAGIC
    return header, content[52 + header["metadata"]:]


def volume_of_photo(width, height, depth):
    """Slices of the photograph, each one pixel further along its diagonal and a little more transparent, as RGBA bytes."""
    with open(PHOTO, "rb") as file:
        columns, _, _, _, values, _ = read_png(file.read())
    pixels = bytearray()
    for z in range(depth):
        for y in range(64 + z, 64 + z + height):
            for x in range(96 + z, 96 + z + width):
                pixels += bytes(values[(y * columns + x) * 3:(y * columns + x) * 3 + 3]) + bytes([255 - z])
    return bytes(pixels)


def main():
    sys.dont_write_bytecode = True
    unittest.main(verbosity=1)
