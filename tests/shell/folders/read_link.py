#!/usr/bin/env python3
"""Reads a shortcut by the published layout of its format: read_link.py FILE OUT

Writes what it holds to OUT as lines of "key=value" in UTF-8. Knows nothing of the library."""
import struct
import sys
import uuid

HAS_ID_LIST, HAS_LINK_INFO, IS_UNICODE = 1 << 0, 1 << 1, 1 << 7
STRINGS = (("description", 1 << 2), ("relative", 1 << 3), ("dir", 1 << 4), ("args", 1 << 5),
           ("icon", 1 << 6))


def text_at(data, start):
    return data[start:data.index(b"\0", start)].decode("latin-1")


def wide_at(data, start):
    end = start
    while data[end:end + 2] != b"\0\0":
        end += 2
    return data[start:end].decode("utf-16-le")


def read(data):
    values = {}
    (size, clsid, flags, attributes, _, _, _, file_size, icon_index, show, hotkey) = \
        struct.unpack_from("<I16sIIQQQIiIH", data, 0)
    assert size == 0x4C, "size of the header"
    values["clsid"] = str(uuid.UUID(bytes_le=clsid)).upper()
    values.update(attributes=attributes, size=file_size, index=icon_index, show=show, hotkey=hotkey)
    pos = size
    if flags & HAS_ID_LIST:
        (length,) = struct.unpack_from("<H", data, pos)
        pos += 2
        items, at = [], pos
        while True:
            (cb,) = struct.unpack_from("<H", data, at)
            if not cb:
                break
            assert cb >= 2 and at + cb <= pos + length - 2, "item within the list"
            items.append(cb)
            at += cb
        assert at + 2 == pos + length, "end of the list"
        values["items"] = len(items)
        values["list"] = data[pos:pos + length].hex()
        pos += length
    if flags & HAS_LINK_INFO:
        (length, header, kind, _, local, _, suffix) = struct.unpack_from("<7I", data, pos)
        info = data[pos:pos + length]
        if kind & 1:
            values["path"] = text_at(info, local) + text_at(info, suffix)
            if header >= 0x24:
                wide, wide_suffix = struct.unpack_from("<2I", info, 0x1C)
                values["path"] = wide_at(info, wide) + wide_at(info, wide_suffix)
        pos += length
    for name, bit in STRINGS:
        if flags & bit:
            (count,) = struct.unpack_from("<H", data, pos)
            pos += 2
            width = 2 if flags & IS_UNICODE else 1
            raw = data[pos:pos + count * width]
            assert len(raw) == count * width, "length of " + name
            # Some writers count a terminator, which the layout has none of.
            values[name] = raw.decode("utf-16-le" if width == 2 else "latin-1").rstrip("\0")
            pos += count * width
    while pos + 4 <= len(data):
        (length,) = struct.unpack_from("<I", data, pos)
        if length < 4:
            break
        assert length >= 8 and pos + length <= len(data), "block within the file"
        pos += length
    values["whole"] = 1
    return values


def main():
    with open(sys.argv[1], "rb") as link:
        values = read(link.read())
    with open(sys.argv[2], "w", encoding="utf-8", newline="\n") as out:
        for key, value in values.items():
            out.write("%s=%s\n" % (key, value))


main()
