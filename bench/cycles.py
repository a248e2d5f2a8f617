#!/usr/bin/env python3
"""Cycles an element of hot loops on an AArch64 core, as llvm-mca models it.

    cycles.py LIBRARY OPERATION[=BYTES] ...

LIBRARY is an AArch64 build with its symbols, such as build/arm64/lib/libsignal_tzm.so. An OPERATION is a symbol or
a shell pattern of symbols; calls within the library are followed. Of the innermost loops that are found the ones that
get through most bytes a turn are listed, a line each: the others do remainders. Loads are taken to hit the L1 cache.

An element of a loop has BYTES bytes in the arrays it stores to, or in those it loads from if it stores to none; by
default they come from the last type in the operation's name.
"""
import argparse
import fnmatch
import json
import re
import subprocess
import sys

BRANCH = re.compile(r"(?:b|bl|b\.\w+|cbn?z|tbn?z)\s.*<(?P<name>[^>+]+)(?:\+0x(?P<offset>[0-9a-f]+))?>")
LANES = {"8b": 8, "16b": 16, "4h": 8, "8h": 16, "2s": 8, "4s": 16, "1d": 8, "2d": 16, "b": 1, "h": 2, "s": 4, "d": 8}
REGISTERS = {"q": 16, "d": 8, "s": 4, "h": 2, "b": 1, "x": 8, "w": 4}
NARROW = {"b": 1, "sb": 1, "h": 2, "sh": 2, "sw": 4}


def run(command, text=None):
    try:
        return subprocess.run(command, input=text, capture_output=True, text=True, check=True).stdout
    except FileNotFoundError:
        sys.exit(f"cycles.py: {command[0]} is missing: install llvm-19")
    except subprocess.CalledProcessError as error:
        sys.exit(f"cycles.py: {error.stderr.strip().splitlines()[-1]}")


def disassemble(library):
    """Symbol to its instructions, as (address, text)."""
    functions, code = {}, None
    for line in run(["llvm-objdump-19", "-d", "--no-show-raw-insn", "--no-print-imm-hex", library]).splitlines():
        if head := re.match(r"[0-9a-f]+ <(.+)>:$", line):
            code = functions[head[1]] = []
        elif (instruction := re.match(r"\s*([0-9a-f]+):\s+(\S.*)", line)) and code is not None:
            code.append((int(instruction[1], 16), re.sub(r"\s+", " ", instruction[2])))
    if not any("ldr q" in text for code in functions.values() for _, text in code):
        sys.exit(f"cycles.py: {library} is not an AArch64 library")
    return functions


def reachable(functions, name):
    names = [name]
    for caller in names:  # grows on the way
        for _, text in functions[caller]:
            target = (branch := BRANCH.match(text)) and branch["name"].removesuffix("@plt")
            if target in functions and target not in names:
                names.append(target)
    return names


def innermost_loops(name, code):
    addresses = [address for address, _ in code]
    spans = []
    for last, (address, text) in enumerate(code):
        branch = BRANCH.match(text)
        if not branch or branch["name"] != name or text.startswith("bl "):
            continue
        target = addresses[0] + int(branch["offset"] or "0", 16)
        if target > address or target not in addresses:
            continue
        first = addresses.index(target)
        if not any(re.match(r"(ret|b|bl)\b(?!\.)", text) for _, text in code[first:last]):
            spans.append((first, last))
    return [code[first:last + 1] for first, last in spans
            if not any(first <= a and b <= last and (a, b) != (first, last) for a, b in spans)]


def traffic(loop):
    """Bytes loaded and stored a turn, those of the stack apart."""
    moved = {"ld": 0, "st": 0}
    for _, text in loop:
        access = re.match(r"(ld|st)(?:ur|r|p|np|\d)(\w*) (.*?), ?\[(?!sp)", text)
        if not access:
            continue
        kind, narrow, registers = access[1], access[2], access[3].strip("{} ")
        for register in re.split(r", ?", registers):
            if lanes := re.match(r"v\d+\.(\w+)", register):
                moved[kind] += LANES[lanes[1]]
            elif register[0] in REGISTERS:
                moved[kind] += NARROW.get(narrow) or REGISTERS[register[0]]
    return moved["ld"], moved["st"]


def cycles(loop, core):
    lines = [re.sub(r"(0x[0-9a-f]+|[0-9a-f]+) <.*", ".", text.split("//")[0]) for _, text in loop]
    report = json.loads(run(["llvm-mca-19", "-mtriple=aarch64", f"-mcpu={core}", "-json"], "\n".join(lines) + "\n"))
    summary = report["CodeRegions"][0]["SummaryView"]
    return summary["TotalCycles"] / summary["Iterations"]


def hot_loops(functions, operation, element_bytes=0, core="neoverse-n1"):
    """The loops that get through most bytes a turn: elements, instructions and cycles a turn."""
    if not element_bytes:
        types = re.findall(r"(\d+)[usf](c?)", operation)
        if not types:
            sys.exit(f"cycles.py: {operation} names no type: give the bytes of an element, {operation}=BYTES")
        element_bytes = int(types[-1][0]) // 8 * (2 if types[-1][1] else 1)
    loops = {}
    for function in reachable(functions, operation):
        for loop in innermost_loops(function, functions[function]):
            loops[tuple(text for _, text in loop)] = (loop, *traffic(loop))
    most = max((loaded + stored for _, loaded, stored in loops.values()), default=0)
    return [((stored or loaded) / element_bytes, len(loop), cycles(loop, core))
            for loop, loaded, stored in loops.values() if loaded + stored == most > 0]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("library", metavar="LIBRARY")
    parser.add_argument("operations", metavar="OPERATION[=BYTES]", nargs="+")
    parser.add_argument("--core", default="neoverse-n1", help="a processor that llvm-mca knows (default: %(default)s)")
    arguments = parser.parse_args()

    functions = disassemble(arguments.library)
    print(f"{'operation':32} {'elements/turn':>13} {'instructions':>12} {'cycles/turn':>11} {'cycles/element':>14}")
    for argument in arguments.operations:
        pattern, _, given = argument.partition("=")
        names = sorted(name for name in fnmatch.filter(functions, pattern) if not name.endswith("@plt"))
        if not names:
            sys.exit(f"cycles.py: {arguments.library} has no {pattern}")
        for name in names:
            loops = hot_loops(functions, name, int(given or 0), arguments.core)
            if not loops:
                print(f"{name:32} {'no loop of its own':>13}")
            for elements, instructions, turn in loops:
                print(f"{name:32} {elements:13.4g} {instructions:12} {turn:11.1f} {turn / elements:14.3f}")


if __name__ == "__main__":
    main()
