#!/usr/bin/env python3
"""Whether built files are hardened: hardening_test.py FORTIFIED FILE..., with FORTIFIED 1 where they were optimised. Names what a
file lacks."""

import os
import re
import subprocess
import sys
from pathlib import Path

READELF = os.environ.get("READELF", "readelf")
PACIASP = bytes.fromhex("3f2303d5")


def read(file, *what):
    return subprocess.run([READELF, "-W", *what, file], check=True, capture_output=True, text=True).stdout


def faults(file):
    header, segments, dynamic = read(file, "-h"), read(file, "-l"), read(file, "-d")
    if "INTERP" in segments and ("DYN" not in header or not re.search(r"FLAGS_1.*\bPIE\b", dynamic)):
        yield "a program at a fixed address"
    if "GNU_RELRO" not in segments or not re.search(r"FLAGS.*\b(BIND_)?NOW\b", dynamic):
        yield "relocations that stay writable: no RELRO, or no immediate binding"
    flags = {match[1]: match[2] for match in re.finditer(r"(?m)^ +(\w+) +(?:0x\w+ +){5}([RWE ]{3})", segments)}
    if "E" in flags.get("GNU_STACK", "E"):
        yield "an executable stack"
    if re.search(r"(?m)^ +\w+ +(?:0x\w+ +){5}RWE", segments) or "TEXTREL" in dynamic:
        yield "memory that is both writable and executable"
    # The one library that keeps no array on the stack has nothing to protect there.
    if "__stack_chk_fail" not in symbols(file) and "libe2exf" not in file:
        yield "no stack protector"
    # The instruction, because the file's mark for branch targets depends on what the toolchain itself adds.
    if "AArch64" in header and PACIASP not in Path(file).read_bytes():
        yield "return addresses that are not signed"


def symbols(file):
    return set(re.findall(r"UND (\w+)", read(file, "--dyn-syms")))


def main(fortified, *files):
    found = [f"{file}: {fault}" for file in files for fault in faults(file)]
    # Only what the compiler cannot prove is checked when it runs: not every file has such a call.
    if fortified == "1" and not any(re.fullmatch(r"__\w+_chk", name) for file in files for name in symbols(file)):
        found.append("no file has a call that _FORTIFY_SOURCE checks")
    for fault in found:
        print(fault, file=sys.stderr)
    return 1 if found else 0


sys.exit(main(*sys.argv[1:]))
