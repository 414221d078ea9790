#!/usr/bin/env python3
"""What the product exports, and what it takes from the platform and the stack, against two lists that are changed on
purpose only: symbols_test.py [--update] ROOT PRODUCT [PLATFORM_LIBRARY...]. The first is what follows from the interface
models; with --update the second is written anew."""

import os
import re
import subprocess
import sys
from pathlib import Path

# What comes from the toolchain has a version (name@GLIBC_2.34), but for these.
TOOLCHAIN = re.compile(r"_ITM_\w+|__gmon_start__|__cxa_\w+")
# What every platform has, two operations that it may lack, which are weak, and of the stack the way to its runtime.
REQUIRED = re.compile(r"""
    ara::com::(
        internal::Runtime::(Init|OfferService|StopOfferService)
      | internal::vsomeip::common::((un)?registerMethodHandler | checkMessageMetaData | is(Event|Method)Undefined
          | (To|From)TransportIdentifier | abort | error_domains::Registry::getDomain | (un)?registerAvailabilityHandler)
      | internal::vsomeip::runtime::(Register | VSomeIPConnection::(Do(Request|Release)Service | instance_))
      | internal::vsomeip::skeleton::ServiceImplBase::((Stop)?OfferService | StopOfferField | SendErrorReply)
      | e2exf::StatusHandler::HandleCheckStatus
    )(\(|$)
  | ara::log::(CreateLogger\(|LogStream::|LoggerImpl::)
  | vsomeip_v3::runtime::get\(\)$""", re.VERBOSE)
WEAK = re.compile(r"ara::com::internal::vsomeip::common::(un)?registerAvailabilityHandler\(")
THREAD = re.compile(r"(pthread_create|thrd_create|clone3?|v?fork|posix_spawnp?|std::(j?thread|this_thread)\b.*)(@.*)?")


def lines(library, which):
    return subprocess.run([os.environ.get("NM", "nm"), "-D", "--demangle", which, library], check=True, capture_output=True, text=True).stdout.splitlines()


def symbols(library, which):
    return {re.sub(r"^[0-9a-f]* +[A-Za-z] ", "", line) for line in lines(library, which)}


def main(arguments):
    update = arguments[:1] == ["--update"]
    root, product, *platform = [Path(argument) for argument in arguments[update:]]
    undefined = symbols(product, "--undefined-only")
    found = {
        "exported_symbols.txt": symbols(product, "--defined-only"),
        "imported_symbols.txt": {name for name in undefined if "@" not in name and not TOOLCHAIN.fullmatch(name)},
    }
    faults = []
    for file, names in found.items():
        path = root / "interfaces" / file
        if update and file != "exported_symbols.txt":  # which scripts/generate writes
            path.write_text("".join(name + "\n" for name in sorted(names)))
        listed = {line for line in path.read_text().splitlines() if not line.startswith("#")}
        faults += [f"{file}: not listed: {name}" for name in sorted(names - listed)]
        faults += [f"{file}: listed, but gone: {name}" for name in sorted(listed - names)]

    weak = {line.split(None, 1)[1] for line in lines(product, "--undefined-only") if line.split()[0] in "wv"}
    faults += [f"optional, but not weak: {name}" for name in sorted(undefined - weak) if WEAK.match(name)]
    faults += [f"starts threads or processes: {name}" for name in sorted(undefined) if THREAD.fullmatch(name)]
    offered = set().union(*(symbols(library, "--defined-only") for library in platform))
    faults += [f"more than a platform has to offer: {name}" for name in sorted(found["imported_symbols.txt"]) if not REQUIRED.match(name)]
    declared = "".join(header.read_text() for header in (root / "platform/include").glob("*.h"))
    # The one class that the platform implements in part: what it does for an adapter is declared among the adapter's base.
    declared += (root / "ara/com/internal/vsomeip/skeleton/vsomeip_service_impl_base.h").read_text()
    for name in sorted(found["imported_symbols.txt"]):
        last = name.split("(")[0].split("::")[-1]
        if name.startswith("vsomeip_v3::"):
            continue  # the stack's
        if not re.search(rf"{re.escape(last)}(?!\w)", declared):
            faults.append(f"not declared in platform/include: {name}")
        if platform and name not in offered:
            faults.append(f"no library of the platform has it: {name}")
    for fault in faults:
        print(fault, file=sys.stderr)
    if faults:
        print("Meant? Then: " + " ".join([sys.argv[0], "--update", *arguments[update:]]), file=sys.stderr)
    return 1 if faults else 0


sys.exit(main(sys.argv[1:]))
