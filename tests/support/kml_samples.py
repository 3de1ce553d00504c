"""Parts of KML files for the tests of the KML rules. What is put into a document stands in its line 3."""

HEAD = '<kml xmlns="http://www.opengis.net/kml/2.2" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">'
SIDES = "<north>2</north><south>1</south><east>2</east><west>1</west>"
PLACE = "<longitude>1</longitude><latitude>2</latitude>"
ICON = "<Icon><href>a.png</href></Icon>"
LIST = "<ListStyle><bgColor>ffffffff</bgColor></ListStyle>"


def document(content):
    return f"{HEAD}\n<Document>\n{content}\n</Document>\n</kml>\n"


def lod(content):
    return f"<Region><LatLonAltBox>{SIDES}</LatLonAltBox><Lod>{content}</Lod></Region>"


def region(content):
    return f"<Region><LatLonAltBox>{content}</LatLonAltBox><Lod><minLodPixels>1</minLodPixels></Lod></Region>"


def overlay(sides=SIDES, icon=ICON, more=""):
    return f"<GroundOverlay>{icon}{more}<LatLonBox>{sides}</LatLonBox></GroundOverlay>"


def link(more="", href="a.kml"):
    return f"<NetworkLink><Link><href>{href}</href>{more}</Link></NetworkLink>"


def look(content, place=PLACE):
    return f"<LookAt>{place}{content}</LookAt>"


def camera(content):
    return f"<Camera>{content}<altitudeMode>absolute</altitudeMode></Camera>"


def style(content, attribute=' id="s"'):
    return f"<Style{attribute}>{content}</Style>"


def style_map(first, second, attribute=' id="m"'):
    """With the style that its pairs are about."""
    return f"<StyleMap{attribute}><Pair>{first}</Pair><Pair>{second}</Pair></StyleMap>{style(LIST)}"
