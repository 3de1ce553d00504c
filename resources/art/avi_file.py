"""Writes silent, uncompressed 8-bit AVI files: what the Windows animation control plays."""

import struct

PALETTE_SIZE = 256
HAS_INDEX = 0x10
KEY_FRAME = 0x10


def _chunk(name, data):
    return name + struct.pack("<I", len(data)) + data + b"\0" * (len(data) % 2)


def _list(kind, name, *parts):
    return _chunk(kind, name + b"".join(parts))


def _main_header(count, width, height, microseconds):
    frame_size = width * height
    return struct.pack(
        "<10I16x",
        microseconds,
        frame_size * 1000000 // microseconds,
        0,
        HAS_INDEX,
        count,
        0,
        1,
        frame_size,
        width,
        height,
    )


def _stream_header(count, width, height, microseconds):
    return b"vidsDIB " + struct.pack(
        "<IHHIIIIIIII4h",
        0,
        0,
        0,
        0,
        microseconds,
        1000000,
        0,
        count,
        width * height,
        0xFFFFFFFF,
        0,
        0,
        0,
        width,
        height,
    )


def _format(width, height, palette):
    header = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 8, 0, width * height, 0, 0, PALETTE_SIZE, 0)
    colours = [(blue, green, red, 0) for red, green, blue in palette]
    colours += [(0, 0, 0, 0)] * (PALETTE_SIZE - len(palette))
    return header + b"".join(map(bytes, colours))


def animation(frames, palette, milliseconds):
    """The content of an AVI file.

    A frame is a list of rows, top row first, a row a list of indices into the
    palette of (red, green, blue); all frames have one size, whose width is a
    multiple of four.
    """
    height, width = len(frames[0]), len(frames[0][0])
    assert width % 4 == 0, "rows would need padding"
    timing = (len(frames), width, height, milliseconds * 1000)
    movie, index = b"", b""
    for frame in frames:
        data = b"".join(bytes(row) for row in reversed(frame))
        index += b"00db" + struct.pack("<III", KEY_FRAME, 4 + len(movie), len(data))
        movie += _chunk(b"00db", data)
    return _list(
        b"RIFF",
        b"AVI ",
        _list(
            b"LIST",
            b"hdrl",
            _chunk(b"avih", _main_header(*timing)),
            _list(
                b"LIST",
                b"strl",
                _chunk(b"strh", _stream_header(*timing)),
                _chunk(b"strf", _format(width, height, palette)),
            ),
        ),
        _list(b"LIST", b"movi", movie),
        _chunk(b"idx1", index),
    )
