"""Reads a JFFS2 file system out of a flash image as the kernel does at a mount: every node's sums
are checked, what fails them is as if it were not there, and of two nodes about the same bytes or
the same name the one of the higher version counts. (The reader of mtd-utils checks no sums.)

A file whose newest nodes are torn therefore reads as what is left of it: the older nodes, which may
make an older text, a mixture of both or a file with holes.
"""

import collections
import struct
import zlib

MAGIC = 0x1985
ACCURATE = 0x2000  # cleared in place where a node is no longer valid
DIRENT, INODE = 0xE001, 0xE002
HEADER = struct.Struct("<HHII")
DIRENT_FIELDS = struct.Struct("<IIIIBB2xII")  # from byte 12 on
INODE_FIELDS = struct.Struct("<IIIHHIIIIIIIBBHII")
COMPRESSION = {0x00: "none", 0x01: "zero", 0x02: "rtime", 0x06: "zlib"}
ROOT = 1

Data = collections.namedtuple("Data", "version size offset length compression bytes")
Name = collections.namedtuple("Name", "version inode")


class Damaged(Exception):
    """The image cannot be read as the kernel would."""


def crc(data):
    """The kernel's sum: the usual polynomial without inversion before and after."""
    return zlib.crc32(data, 0xFFFFFFFF) ^ 0xFFFFFFFF


def rtime(data, size):
    """Undoes the compression that repeats what followed the last occurrence of a byte."""
    after, out, at = [0] * 256, bytearray(), 0
    while len(out) < size:
        value, repeat = data[at], data[at + 1]
        at += 2
        out.append(value)
        back, after[value] = after[value], len(out)
        for _ in range(repeat):
            out.append(out[back])
            back += 1
    return bytes(out[:size])


def unpacked(node):
    kind = COMPRESSION.get(node.compression)
    if kind == "none":
        return node.bytes
    if kind == "zero":
        return bytes(node.length)
    if kind == "rtime":
        return rtime(node.bytes, node.length)
    if kind == "zlib":
        return zlib.decompress(node.bytes)
    raise Damaged(f"compression {node.compression} is not known here")


class Image:
    """`erase_block` bytes are erased at a time, and no node goes beyond such a block."""

    def __init__(self, image, erase_block):
        self.image, self.block = image, erase_block
        self.names = collections.defaultdict(dict)  # of a folder's inode: name, newest Name
        self.data = collections.defaultdict(list)
        self.bad = 0  # nodes that are cut short
        for begin in range(0, len(image), erase_block):
            self._scan(begin, min(begin + erase_block, len(image)))

    def _scan(self, at, end):
        while (at := self.image.find(b"\x85\x19", at, end)) >= 0:
            at += self._take(at, end) if at % 4 == 0 else 1

    def _take(self, at, end):
        """Takes the node at this place, if it is one; returns how far it goes."""
        if end - at < HEADER.size:
            return 4
        _, kind, length, header_sum = HEADER.unpack_from(self.image, at)
        # The bit is not part of the sum: it is cleared later.
        whole = struct.pack("<HHI", MAGIC, kind | ACCURATE, length)
        if crc(whole) != header_sum or length < HEADER.size or at + length > end:
            return 4
        if kind & ACCURATE:
            if kind == DIRENT:
                self._take_name(at, length)
            elif kind == INODE:
                self._take_data(at, length)
        return (length + 3) & ~3

    def _take_name(self, at, length):
        fields = DIRENT_FIELDS.unpack_from(self.image, at + 12)
        parent, version, inode, _, size, _, node_sum, name_sum = fields
        name = self.image[at + 40:at + 40 + size]
        if (crc(self.image[at:at + 32]) != node_sum or crc(name) != name_sum
                or length < 40 + size):
            self.bad += 1
            return
        known = self.names[parent].get(name)
        if known is None or version > known.version:
            self.names[parent][name] = Name(version, inode)

    def _take_data(self, at, length):
        fields = INODE_FIELDS.unpack_from(self.image, at + 12)
        inode, version, size, offset = fields[0], fields[1], fields[5], fields[9]
        packed, unpacked_size, compression = fields[10:13]
        data_sum, node_sum = fields[15:17]
        content = self.image[at + 68:at + 68 + packed]
        if (crc(self.image[at:at + 60]) != node_sum or length < 68 + packed
                or crc(content) != data_sum):
            self.bad += 1
            return
        self.data[inode].append(Data(version, size, offset, unpacked_size, compression, content))

    def listing(self, folder=ROOT):
        """The names in a folder with their inodes."""
        return {name.decode(): entry.inode for name, entry in self.names[folder].items()
                if entry.inode != 0}

    def content(self, inode):
        if inode not in self.data:
            raise Damaged(f"inode {inode} has a name and nothing else")
        text = bytearray()
        for node in sorted(self.data[inode], key=lambda node: node.version):
            # The size as it was when this node was written: shorter means cut, longer a hole.
            text[node.size:] = b""
            text.extend(bytes(node.size - len(text)))
            text[node.offset:node.offset + node.length] = unpacked(node)
            if len(text) != node.size:
                raise Damaged(f"a node of inode {inode} goes beyond its size")
        return bytes(text)

    def read(self, path):
        """The file's text; None where there is no such name."""
        inode = ROOT
        for part in path.split("/"):
            inode = self.listing(inode).get(part)
            if inode is None:
                return None
        return self.content(inode)
