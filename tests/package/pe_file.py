"""Reads of a program or DLL for 64-bit Windows what its makers decided."""

import dataclasses
import struct

HIGH_ENTROPY, DYNAMIC_BASE, NX_COMPATIBLE = 0x20, 0x40, 0x100
EXECUTABLE, WRITABLE = 0x20000000, 0x80000000
VERSION, MANIFEST = 16, 24  # kinds of resources


@dataclasses.dataclass
class Section:
    name: str
    flags: int
    address: int
    size: int
    place: int  # in the file


class PeFile:
    def __init__(self, path):
        self.content = path.read_bytes()
        (start,) = struct.unpack_from("<I", self.content, 0x3C)
        if self.content[start : start + 4] != b"PE\0\0":
            raise ValueError(f"{path} is no program")
        machine, count, self.time, _, _, size, _ = struct.unpack_from("<HHIIIHH", self.content, start + 4)
        if machine != 0x8664:
            raise ValueError(f"{path} is not for 64 bits")
        optional = start + 24
        (self.flags,) = struct.unpack_from("<H", self.content, optional + 70)
        (self.subsystem,) = struct.unpack_from("<H", self.content, optional + 68)
        (directories,) = struct.unpack_from("<I", self.content, optional + 108)
        self.directories = [
            struct.unpack_from("<II", self.content, optional + 112 + 8 * i) for i in range(directories)
        ]
        self.sections = []
        for i in range(count):
            name, space, address, length, place, _, _, _, _, flags = struct.unpack_from(
                "<8sIIIIIIHHI", self.content, optional + size + 40 * i
            )
            self.sections.append(
                Section(name.rstrip(b"\0").decode(), flags, address, max(space, length), place)
            )

    def place_of(self, address):
        for section in self.sections:
            if section.address <= address < section.address + section.size:
                return address - section.address + section.place
        raise ValueError(f"nothing is at {address:#x}")

    def _text(self, address):
        place = self.place_of(address)
        return self.content[place : self.content.index(b"\0", place)].decode()

    def imports(self):
        """The names of DLLs, in small letters; delayed ones among them."""
        found = []
        for directory, size, name in ((1, 20, 12), (13, 32, 4)):
            if len(self.directories) <= directory or self.directories[directory][0] == 0:
                continue
            place = self.place_of(self.directories[directory][0])
            while (address := struct.unpack_from("<I", self.content, place + name)[0]) != 0:
                found.append(self._text(address).lower())
                place += size
        return found

    def resources(self):
        """The kinds that there are."""
        if self.directories[2][0] == 0:
            return set()
        place = self.place_of(self.directories[2][0])
        named, numbered = struct.unpack_from("<HH", self.content, place + 12)
        entries = [
            struct.unpack_from("<II", self.content, place + 16 + 8 * i) for i in range(named + numbered)
        ]
        return {kind for kind, _ in entries}

    def can_be_moved(self):
        """Whether there is a table of what changes with its address."""
        return self.directories[5][1] > 0

    def version(self):
        """The fixed one, four numbers."""
        place = self.content.index(struct.pack("<I", 0xFEEF04BD))
        high, low = struct.unpack_from("<II", self.content, place + 8)
        return high >> 16, high & 0xFFFF, low >> 16, low & 0xFFFF
