"""Whether the committed pictures belong to their sources and have the form that Windows expects."""

import pathlib
import struct
import sys
import unittest

TOP = pathlib.Path(__file__).resolve().parents[2]
RESOURCES = TOP / "resources"
sys.path.insert(0, str(TOP / "scripts"))

import checksums  # noqa: E402

BUTTON_SIZES = [16, 20, 24, 32, 40, 48]
ICONS = {
    "mosaicon": [16, 20, 24, 32, 40, 48, 64, 256],
    "maker": [32, 48, 64, 80, 96, 128, 256],
    **dict.fromkeys(
        [
            "start",
            "start_busy",
            "exit",
            "exit_busy",
            "cancel_small",
            "cancel_small_grey",
            "upload",
            "info",
            "help",
        ],
        BUTTON_SIZES,
    ),
}
PNG_SIGNATURE = b"\x89PNG\r\n\x1a\n"


def icon_frames(path):
    """The frames of an icon file by their side in pixels, in the file's order."""
    data = path.read_bytes()
    reserved, kind, count = struct.unpack_from("<3H", data)
    if (reserved, kind) != (0, 1):
        raise ValueError(f"{path} is no icon")
    frames = {}
    for i in range(count):
        width, height, _, _, _, bits, size, offset = struct.unpack_from("<4B2H2I", data, 6 + 16 * i)
        if width != height or bits != 32 or offset + size > len(data):
            raise ValueError(f"{path}: frame {i} is wrong")
        frames[width or 256] = data[offset : offset + size]
    return frames


def bitmap_pixels(frame, side):
    """The pixels of a frame as (blue, green, red, alpha), after a look at its header."""
    header = struct.unpack_from("<IiiHHI", frame)
    if header != (40, side, 2 * side, 1, 32, 0):
        raise ValueError(f"the bitmap header is {header}")
    mask_stride = (side + 31) // 32 * 4
    if len(frame) != 40 + side * side * 4 + side * mask_stride:
        raise ValueError(f"the frame has {len(frame)} bytes")
    return [tuple(frame[40 + 4 * i : 44 + 4 * i]) for i in range(side * side)]


def chunks(data):
    """The chunks of a RIFF list, by name; of several with one name the last."""
    found, position = {}, 0
    while position < len(data):
        name, size = struct.unpack_from("<4sI", data, position)
        found[name] = data[position + 8 : position + 8 + size]
        position += 8 + size + size % 2
    return found


class PicturesTest(unittest.TestCase):
    def test_no_source_has_changed_since_the_pictures_were_made(self):
        art = RESOURCES / "art"
        files = [
            RESOURCES / "make-art",
            *art.glob("*.svg"),
            *art.glob("*.py"),
            *RESOURCES.glob("*.ico"),
            RESOURCES / "splash.bmp",
            RESOURCES / "busy.avi",
        ]
        self.assertEqual(checksums.problems(RESOURCES / "checksums.txt", files), [], "run resources/make-art")

    def test_icons_have_all_their_sizes(self):
        for name, sizes in ICONS.items():
            with self.subTest(name):
                self.assertEqual(list(icon_frames(RESOURCES / f"{name}.ico")), sizes)

    def test_small_frames_are_bitmaps_and_only_the_largest_is_a_png(self):
        for name in ICONS:
            for side, frame in icon_frames(RESOURCES / f"{name}.ico").items():
                with self.subTest(name, side=side):
                    self.assertEqual(frame.startswith(PNG_SIGNATURE), side == 256)
                    if side < 256:
                        alphas = {pixel[3] for pixel in bitmap_pixels(frame, side)}
                        self.assertIn(0, alphas)
                        self.assertIn(255, alphas)

    def test_buttons_out_of_use_have_no_colours_and_the_others_have(self):
        for name in ICONS:
            frame = icon_frames(RESOURCES / f"{name}.ico")[32]
            spread = max(max(pixel[:3]) - min(pixel[:3]) for pixel in bitmap_pixels(frame, 32))
            with self.subTest(name):
                if name.endswith(("_busy", "_grey")):
                    self.assertEqual(spread, 0)
                else:
                    self.assertGreater(spread, 60)

    def test_the_splash_picture_is_a_24_bit_bitmap(self):
        data = (RESOURCES / "splash.bmp").read_bytes()
        self.assertEqual(data[:2], b"BM")
        self.assertEqual(struct.unpack_from("<I", data, 2)[0], len(data))
        self.assertEqual(struct.unpack_from("<IiiHHI", data, 14), (40, 480, 270, 1, 24, 0))

    def test_the_animation_is_an_uncompressed_8_bit_avi(self):
        riff = chunks((RESOURCES / "busy.avi").read_bytes())[b"RIFF"]
        self.assertEqual(riff[:4], b"AVI ")
        # Both lists have the name LIST: the headers come first.
        header_size = struct.unpack_from("<I", riff, 8)[0]
        headers = chunks(riff[16 : 12 + header_size])
        stream = chunks(headers[b"LIST"][4:])
        (frames,) = struct.unpack_from("<I", headers[b"avih"], 16)
        self.assertEqual(frames, 12)
        self.assertEqual(stream[b"strh"][:8], b"vidsDIB ")
        self.assertEqual(struct.unpack_from("<IiiHHI", stream[b"strf"]), (40, 32, 32, 1, 8, 0))
        self.assertEqual(stream[b"strf"][40:44], bytes((255, 0, 255, 0)), "the key colour")

        rest = chunks(riff[12 + header_size :])
        movie, index = rest[b"LIST"], rest[b"idx1"]
        self.assertEqual(movie[:4], b"movi")
        self.assertEqual(len(index), 16 * frames)
        pictures = set()
        for i in range(frames):
            name, _, offset, size = struct.unpack_from("<4s3I", index, 16 * i)
            self.assertEqual(struct.unpack_from("<4sI", movie, offset), (name, size))
            picture = movie[offset + 8 : offset + 8 + size]
            self.assertEqual(len(picture), 32 * 32)
            # Rows are stored from the bottom.
            self.assertEqual(picture[31 * 32], 0, "the top left pixel")
            pictures.add(picture)
        self.assertEqual(len(pictures), frames, "no frame comes twice")


if __name__ == "__main__":
    unittest.main()
