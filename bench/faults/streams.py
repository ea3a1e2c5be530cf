"""Streams with faults, and which of their intact frames the rules of doc/wire-format.md let a receiver keep.

A stream is a list of pieces, each a Piece. A fault is a function that makes such a list from good frames."""

import collections
import random

MOST_FRAME = 512000
LEAST_JFIF = 625
# index: that of the good frame whose bytes these are, complete; None for other bytes and for damaged frames.
Piece = collections.namedtuple("Piece", "bytes index")
HEADER_SIZE = {"compact": 12, "prefixed": 26, "jfif": 623}
# Offsets of the header bytes that are damaged: markers, lengths, sizes, and for JFIF the starts of segments.
HEADER_BYTES = {"compact": (0, 1, 2, 3, 4, 7, 10, 11), "prefixed": (0, 2, 3, 12, 14, 16, 17, 18, 21, 25),
                "jfif": (0, 1, 3, 7, 20, 158, 164, 166, 609)}


def good(frames):
    return [Piece(frame, index) for index, frame in enumerate(frames)]


def each_tenth(frames, damage):
    return [Piece(damage(frame), None) if index % 10 == 9 else Piece(frame, index) for index, frame in enumerate(frames)]


def garbage(frames, form, dice):
    """Up to 4 KB before each frame, with bare markers and beginnings of headers in them; one ends in a single FF."""
    pieces = []
    for piece in good(frames):
        noise = bytearray(dice.randbytes(dice.randint(1, 4096)))
        start = dice.choice((b"\xff\xd8", b"\xff\xd9", b"\xff\xd8\xff\xe0\0\x10JFIF", frames[0][:9]))
        place = dice.choice((0, len(noise) // 2, len(noise)))
        noise[place:place + len(start)] = start
        if piece.index == 60:
            noise[-1:] = b"\xff"
        pieces += [Piece(bytes(noise), None), piece]
    return pieces


def truncated(frames, form, dice):
    return each_tenth(frames, lambda frame: frame[:dice.randint(HEADER_SIZE[form] + 30, len(frame) - 3)])


def holed(frames, form, dice):
    def damage(frame):
        at = dice.randint(HEADER_SIZE[form], len(frame) - 1200)
        return frame[:at] + frame[at + dice.randint(100, 1000):]
    return each_tenth(frames, damage)


def overwritten(frames, form, dice):
    def damage(frame):
        data = bytearray(frame)
        for _ in range(50):
            data[dice.randint(HEADER_SIZE[form], len(frame) - 3)] = dice.randrange(256)
        return bytes(data)
    return each_tenth(frames, damage)


def headers_damaged(frames, form, dice):
    places = iter(HEADER_BYTES[form] * len(frames))

    def damage(frame):
        data = bytearray(frame)
        data[next(places)] ^= dice.choice((1, 2, 4, 8, 16, 32))
        return bytes(data)
    return each_tenth(frames, damage)


def joined(frames, form, dice):
    return [Piece(frames[0][len(frames[0]) // 2:], None)] + good(frames)[1:]


def large_claim(frames, form, dice):
    """Before each tenth frame one of 700 bytes that claims 65500x65500."""
    side, body = 65500, dice.randbytes(800).replace(b"\xff", b"\0")
    if form == "jfif":
        claim = frames[0][:163] + side.to_bytes(2, "big") * 2 + frames[0][167:623] + body[:700 - 625] + b"\xff\xd9"
    else:
        claim = b"\xff\xd8" + (700 - HEADER_SIZE[form]).to_bytes(2, "little") + side.to_bytes(2, "little") * 2 + b"\x32\0\xff\xd9"
        claim = (frames[0][:1] + b"\0\xff\0" + frames[0][4:14] if form == "prefixed" else b"") + claim + body[:700 - HEADER_SIZE[form]]
    assert len(claim) == 700
    pieces = []
    for piece in good(frames):
        pieces += [Piece(claim, None), piece] if piece.index % 10 == 9 else [piece]
    return pieces


def endless(frames, form, megabytes):
    """The beginning of a frame, then megabytes without an end marker, then good frames. A generator."""
    dice = random.Random(8)
    block = dice.randbytes(1000000).replace(b"\xff", b"\xff\0")[:1000000 - 1] + b"\0"
    yield frames[0][:-2]
    for _ in range(megabytes):
        yield block
    yield b"".join(frames)


# ---- What the rules allow --------------------------------------------------------------------------------------------

def compact_at(data, at):
    return data[at:at + 2] == b"\xff\xd8" and data[at + 10:at + 12] == b"\xff\xd9"


def extent(data, at, form):
    """The end of the frame that a receiver finds at `at`, in damaged bytes; `at` itself if it finds none."""
    if form == "jfif":
        end = data.find(b"\xff\xd9", at, at + MOST_FRAME)
        marks = data[at:at + 10] == b"\xff\xd8\xff\xe0\0\x10JFIF" and data[at + 20:at + 22] == b"\xff\xdb"
        marks = marks and data[at + 158:at + 160] == b"\xff\xc0" and data[at + 609:at + 611] == b"\xff\xda"
        return at if not marks or end < 0 or len(data) - at < LEAST_JFIF else end + 2
    header = at + (14 if form == "prefixed" else 0)
    if not compact_at(data, header):
        return at
    length = int.from_bytes(data[header + 2:header + 4], "little") + 12
    if form == "prefixed" and bytes(data[at + i] for i in (0, 2, 4, 6, 12)) == b"\xf6\xff\xf9\xdd\xc5":
        length = length % 65536 + (data[at + 3] << 16) + (data[at + 1] << 24)
    return at if length > MOST_FRAME else header + length


def kept(pieces, form):
    """The intact frames that a receiver finds: no earlier frame includes their start, and it doesn't directly follow a single FF,
    which the search steps over with the byte after it."""
    data = b"".join(piece.bytes for piece in pieces)
    at = covered = 0
    result = []
    for piece in pieces:
        ffs = len(data[:at]) - len(data[max(0, at - 64):at].rstrip(b"\xff")) - max(0, at - 64)
        hidden = ffs % 2 == 1 and form != "prefixed"
        if piece.index is None:
            covered = extent(data, at, form) if at >= covered else covered
        elif at >= covered and not hidden:
            result.append(piece.index)
        at += len(piece.bytes)
    return result


STREAM_FAULTS = {
    "garbage": garbage, "truncated": truncated, "holed": holed, "overwritten": overwritten, "headers": headers_damaged,
    "joined": joined, "claim": large_claim,
}
