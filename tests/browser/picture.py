"""Pictures as a browser takes them: PNG, eight bits a channel, not interlaced."""

import struct
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"
CHANNELS = {2: 3, 6: 4}  # by the colour type


class Picture:
    def __init__(self, data):
        if not data.startswith(SIGNATURE):
            raise AssertionError("no PNG file")
        self.width, self.height, depth, colours, _, _, interlaced = struct.unpack(">IIBBBBB", chunk(data, b"IHDR"))
        if depth != 8 or colours not in CHANNELS or interlaced:
            raise AssertionError(f"a PNG of another kind: depth {depth}, colour type {colours}")
        self.channels = CHANNELS[colours]
        self.rows = unfiltered(zlib.decompress(chunk(data, b"IDAT")), self.width * self.channels, self.channels)

    def rows_with_more_than_one_colour(self):
        return sum(row != row[: self.channels] * self.width for row in self.rows)


def chunk(data, wanted):
    """The content of all chunks of that name, joined."""
    content = b""
    at = len(SIGNATURE)
    while at < len(data):
        length, name = struct.unpack_from(">I4s", data, at)
        if name == wanted:
            content += data[at + 8 : at + 8 + length]
        at += length + 12
    return content


def unfiltered(data, length, distance):
    """The rows of a picture. A row stands behind the number of its filter, which tells what each byte was predicted
    from: the byte `distance` before it, the one above, their mean, or the nearest of three."""
    rows = []
    above = bytearray(length)
    for at in range(0, len(data), length + 1):
        row = bytearray(data[at + 1 : at + 1 + length])
        undo(data[at], row, above, distance)
        rows.append(bytes(row))
        above = row
    return rows


def undo(kind, row, above, distance):
    if kind == 0:
        return
    for i, byte in enumerate(row):
        left, up, corner = (row[i - distance], above[i], above[i - distance]) if i >= distance else (0, above[i], 0)
        predicted = (left, up, (left + up) // 2, nearest(left, up, corner))[kind - 1]
        row[i] = (byte + predicted) & 255


def nearest(left, up, corner):
    to_left, to_up, to_corner = abs(up - corner), abs(left - corner), abs(left + up - 2 * corner)
    if to_left <= to_up and to_left <= to_corner:
        return left
    return up if to_up <= to_corner else corner
