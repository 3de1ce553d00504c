"""Writes Windows icon files.

Frames below 256 px are stored as 32-bit bitmaps, which every version of
Windows and every resource compiler reads; the 256 px frame as PNG, as Windows
expects it there.
"""

import io
import struct

PNG_FROM = 256

# Pixels with less opacity than this are cut out where only the mask is used.
MASK_THRESHOLD = 128


def _bitmap(image):
    """The frame as a bitmap without file header: pixels and mask, both bottom row first."""
    width, height = image.size
    # The height counts the mask too.
    header = struct.pack("<IiiHHIIiiII", 40, width, 2 * height, 1, 32, 0, 0, 0, 0, 0, 0)
    red, green, blue, alpha = image.split()
    pixels = bytearray()
    mask = bytearray()
    mask_stride = (width + 31) // 32 * 4
    for y in reversed(range(height)):
        mask_row = bytearray(mask_stride)
        for x in range(width):
            at = (x, y)
            opacity = alpha.getpixel(at)
            pixels += bytes((blue.getpixel(at), green.getpixel(at), red.getpixel(at), opacity))
            if opacity < MASK_THRESHOLD:
                mask_row[x // 8] |= 0x80 >> x % 8
        mask += mask_row
    return header + bytes(pixels) + bytes(mask)


def _png(image):
    stream = io.BytesIO()
    image.save(stream, "PNG")
    return stream.getvalue()


def icon(images):
    """The content of an icon file with these square RGBA images as its frames."""
    frames = [_png(image) if image.width >= PNG_FROM else _bitmap(image) for image in images]
    offset = 6 + 16 * len(frames)
    entries = b""
    for image, frame in zip(images, frames):
        side = image.width % 256  # 0 stands for 256
        entries += struct.pack("<BBBBHHII", side, side, 0, 0, 1, 32, len(frame), offset)
        offset += len(frame)
    return struct.pack("<HHH", 0, 1, len(frames)) + entries + b"".join(frames)
