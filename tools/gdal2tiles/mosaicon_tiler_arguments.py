"""The command line of the tiling script, taken apart and checked.

getopt, not argparse: a title may begin with a dash and is still a title.
"""

import getopt
import os
from dataclasses import dataclass
from typing import Optional, Tuple

from mosaicon_tiler_errors import TilerError

WHITE = 0xFFFFFF


@dataclass
class Request:
    input: str  # absolute path
    output: str  # absolute path without a separator at its end
    colour: Optional[Tuple[int, int, int]] = None  # the transparent R, G, B
    srs: str = ""  # empty: the image's own
    title: str = ""
    kml: bool = False
    url: str = ""
    key: str = ""  # Google Maps key; empty: none


def unpack_colour(text):
    """(R, G, B) of a decimal R + 256*G + 65536*B."""
    if not (text.isascii() and text.isdigit()) or int(text) > WHITE:
        raise TilerError("the transparent colour %r is not a number from 0 to %d" % (text, WHITE))
    packed = int(text)
    return packed & 255, packed >> 8 & 255, packed >> 16


def parse(argv):
    """Raises TilerError when the command line is not the one described in gdal2tiles.py."""
    try:
        options, names = getopt.getopt(argv, "a:s:p:t:ku:g:")
    except getopt.GetoptError as error:
        raise TilerError("the command line was not understood: %s" % error) from None
    if len(names) != 2 or not all(names):
        raise TilerError("the command line must end with the image and the output folder")
    given = dict(options)
    if given.get("-p", "mercator") != "mercator":
        raise TilerError("only tiles of the profile mercator can be made")
    return Request(
        # Absolute: a relative name could begin with a dash.
        input=os.path.abspath(names[0]),
        output=os.path.abspath(names[1]),
        colour=unpack_colour(given["-a"]) if "-a" in given else None,
        srs=given.get("-s", ""),
        title=given.get("-t") or os.path.basename(names[0]),
        kml="-k" in given,
        url=given.get("-u", ""),
        key=given.get("-g", ""),
    )


def without_key(argv):
    """The arguments as they may be logged: the value of -g is a secret of the user."""
    shown, hide = [], False
    for argument in argv:
        if hide:
            shown.append("***")
        elif argument.startswith("-g") and argument != "-g":
            shown.append("-g***")
        else:
            shown.append(argument)
        hide = argument == "-g"
    return shown
