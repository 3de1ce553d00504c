"""Draws the busy animation: a wave that runs over a square of tiles, which swell and shrink.

Whole pixels only: half-transparent edges would keep the key colour as a
fringe.
"""

MILLISECONDS = 90
SIDE = 32
FRAMES = 12

# The first entry is the key: the animation control makes the colour of the top left pixel transparent.
PALETTE = [
    (255, 0, 255),
    (0x5D, 0x9A, 0x3A),
    (0x8F, 0xBF, 0x3F),
    (0xE6, 0xC6, 0x5A),
    (0x5B, 0xB3, 0xD6),
    (0x1F, 0x6F, 0x96),
]
KEY = 0

TILES = ((2, 1, 3), (1, 4, 2), (4, 5, 1))
CELL = 8
GAP = 2
MARGIN = 2

# The tile's side in the frames after the wave has reached it.
SIDES = (2, 4, 6, 8, 8, 8, 8, 8, 8, 6, 4, 2)


def _frame(number):
    rows = [[KEY] * SIDE for _ in range(SIDE)]
    for row, colours in enumerate(TILES):
        for column, colour in enumerate(colours):
            # The wave needs two frames from one diagonal to the next.
            side = SIDES[(number - 2 * (row + column)) % FRAMES]
            inset = (CELL - side) // 2
            top = MARGIN + row * (CELL + GAP) + inset
            left = MARGIN + column * (CELL + GAP) + inset
            for y in range(top, top + side):
                rows[y][left : left + side] = [colour] * side
    return rows


def frames():
    return [_frame(number) for number in range(FRAMES)]
