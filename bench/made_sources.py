#!/usr/bin/env python3
"""Writes a made-up archive of empty files, or a listing, of any size to standard output:

    bench/made_sources.py tar 1000000 >made.tar    # 512 bytes an entry
    bench/made_sources.py zip 3000000 >made.zip    # 160 bytes an entry
    bench/made_sources.py s3 10000000 >made.s3     # a line an entry

Memory constant, but for a temporary file with the directory of a zip.
"""

import struct
import sys
import tarfile
import tempfile


def names(count):
    for i in range(count):
        yield f"data/part-{i // 5000:05}/scene-{i // 50 % 100:02}/image-{i * 2654435761 % 2**32:08x}.jpg"


def write_tar(count, out):
    for name in names(count):
        out.write(tarfile.TarInfo(name).tobuf(tarfile.USTAR_FORMAT))
    out.write(bytes(1024))


def write_zip(count, out):
    """Headers as APPNOTE.TXT has them in 4.3.7 and 4.3.12, and the end for many entries."""
    offset = 0
    with tempfile.TemporaryFile() as directory:
        for name in names(count):
            raw = name.encode()
            # Version, flags, method, time, date, sum, both sizes, length of the name.
            shared = struct.pack("<HHHHHIIIH", 20, 0, 0, 0, 0x21, 0, 0, 0, len(raw))
            local = b"PK\3\4" + shared + bytes(2) + raw
            out.write(local)
            directory.write(b"PK\1\2\24\3" + shared + bytes(12) + struct.pack("<I", offset) + raw)
            offset += len(local)
        size = directory.tell()
        directory.seek(0)
        while block := directory.read(1 << 20):
            out.write(block)
    out.write(b"PK\6\6" + struct.pack("<QHHIIQQQQ", 44, 45, 45, 0, 0, count, count, size, offset))
    out.write(b"PK\6\7" + struct.pack("<IQI", 0, offset + size, 1))
    out.write(b"PK\5\6" + struct.pack("<HHHHIIH", 0, 0, 65535, 65535, 2**32 - 1, 2**32 - 1, 0))


def write_s3(count, out):
    for i, name in enumerate(names(count)):
        out.write(b"2024-02-%02d 12:34:%02d %10d %s\n" % (i % 28 + 1, i % 60, i, name.encode()))


if __name__ == "__main__":
    {"tar": write_tar, "zip": write_zip, "s3": write_s3}[sys.argv[1]](int(sys.argv[2]), sys.stdout.buffer)
