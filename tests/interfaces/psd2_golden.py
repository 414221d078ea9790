#!/usr/bin/env python3
"""Writes one line for each psd2 field: its name and the payload, in hex, of a value in which every member is present.

An encoder of its own over tables of its own: it shares nothing with the library. A type is a width in bytes, "text",
"bytes", a list of (data id, type) for a record, or a one-element tuple of the element's type for a sequence.
"""

import itertools
import sys


def box(inner):
    return [(0, inner)]


def run(*types):
    """A record whose data ids count from 0."""
    return list(enumerate(types))


TRIPLE = run(4, 4, 4)
REFERENCE = [(1, 8), (0, 1), (2, 1)]
RANGED_REFERENCE = run(REFERENCE, 4, 4)
WGS84 = run(4, 4, 4)
POSE = run(WGS84, 4)
RELATIVE = run(REFERENCE, 4)
CLOTHOID = run(4, 4, 4, 4, TRIPLE, 1)
POLYLINE = run(box((WGS84,)), box((CLOTHOID,)))
PATH = run(box(4), box((run(1, REFERENCE),)), 1, 4)
ATTRIBUTE = run(2, 4)
CONSTRAINT = run(box((4,)), run(1, 1, 1, 1), box(4), box(4), box(4), box(4), box(4))
SPEED_LIMIT = [(0, box(4)), (1, 1), (3, box((CONSTRAINT,)))]
META_DATA = run("text", "text", run(1, 2), box((run(box(4), 1),)), box(4), box((SPEED_LIMIT,)), box(4))
LAYER_INFO = run(box((run(2, 2, 4),)), box((META_DATA,)))
SEGMENT = [(0, 4), (1, 4), (2, 4), (3, 4), (4, box(4)), (6, 1)]
PROFILE = run(4, 2, box(4), box((run(4, ATTRIBUTE),)))
REFERENCES = box((REFERENCE,))
LINK = run(
    1, REFERENCES, REFERENCES, box(4), REFERENCE, 1, box(4), box(4), box((SEGMENT,)), box((ATTRIBUTE,)),
    1, 1, box(4), 1, 1, box((PROFILE,)), 1, box(4), 4,
)  # fmt: skip
LANE = [
    (0, REFERENCES), (1, REFERENCES), (2, 4), (3, box((TRIPLE,))), (5, box(4)), (6, box(4)), (7, REFERENCE),
    (8, REFERENCE), (9, 1), (10, box((ATTRIBUTE,))), (11, 4),
]  # fmt: skip
BOUNDARY = run(box(4), 1, 1, run(4, 4), box((TRIPLE,)), box(4), 1)
PARALLEL = run(4, run(1, box((BOUNDARY,))))
LANE_GROUP = run(
    REFERENCE, box((RANGED_REFERENCE,)), box((LANE,)), box((run(1, (PARALLEL,)),)), box((run(box(4), REFERENCES),)), 1
)
LANDMARK = run(1, box((run(1, TRIPLE, 4),)), TRIPLE)
SECTION = run(
    REFERENCE, "text", POLYLINE, REFERENCES, box((run(RELATIVE, RELATIVE, 2),)), box((RELATIVE,)), "text"
)
GARAGE = run(
    box((SECTION,)), run(box((run(REFERENCE, POLYLINE, 1),)), 2), box((TRIPLE,)), box(4), REFERENCE
)
EGO_POSITION = run(8, POSE, RELATIVE, 1, 4, PATH)
DYNAMIC_CONTENT = run(run(RANGED_REFERENCE, ATTRIBUTE), 8, 4, 1)
DATE_TIME = run(4, 1, 2, 1, 1, 1, 1)


def layer(content):
    return run("bytes", (content,), LAYER_INFO)


FIELDS = {
    "automatedParkingLayer": layer(GARAGE),
    "dynamicContentLayer": layer(DYNAMIC_CONTENT),
    "egoPositionLayer": layer(EGO_POSITION),
    "laneLayer": layer(LANE_GROUP),
    "linkLayerLongRange": layer(LINK),
    "linkLayerShortRange": layer(LINK),
    "positioningObjectsLayer": layer(LANDMARK),
    "timezoneInformation": run("bytes", run(box(4), DATE_TIME, DATE_TIME, 1)),
}
WIRE_TYPES = {1: 0, 2: 1, 4: 2, 8: 3}
numbers = itertools.count(1)  # so that no two values in a row are alike


def prefixed(content):
    return len(content).to_bytes(4, "big") + content


def encode(kind):
    if isinstance(kind, int):
        return (next(numbers) * 0x0123456789ABCDEF % (1 << 8 * kind)).to_bytes(kind, "big")
    if kind == "text":
        return prefixed(f"caf\u00e9 {next(numbers)}".encode())
    if kind == "bytes":
        return prefixed(bytes(next(numbers) % 256 for _ in range(16)))
    if isinstance(kind, tuple):
        return prefixed(b"".join(encode(kind[0]) for _ in range(2)))
    members = b""
    for data_id, member in kind:
        wire_type = WIRE_TYPES[member] if isinstance(member, int) else 4
        members += (wire_type << 12 | data_id).to_bytes(2, "big") + encode(member)
    return prefixed(members)


with open(sys.argv[1], "w", encoding="ascii") as out:
    for name, record in FIELDS.items():
        out.write(f"{name} {encode((record,)).hex()}\n")
