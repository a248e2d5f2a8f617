#!/usr/bin/env python3
"""Holds the blocks in the table "Body and tail" of the page on exactness against the template arguments of the code.

    blocks.py PAGE SOURCES

A member that has BodyAndTail<N> or a template of its family <N> in its own text must have the N of its row; one that
shares a template with its siblings must have one of the numbers that BodyAndTail has in its file. The other way round,
every such number must stand in a row of a member of its file.
"""
import fnmatch
import pathlib
import re
import sys


def table(page):
    """(pattern, blocks) for each operation of the table; its own block where the row tells one for each."""
    for line in page.split("## Body and tail")[1].split("\n## ")[0].splitlines():
        cells = [cell.strip() for cell in line.split("|")]
        if len(cells) < 4 or "`" not in cells[1]:
            continue
        names, first = [], ""
        for name in re.findall(r"`([^`]+)`", cells[1]):
            # `_16u_S` beside `Div_8u_S`: another type of the same operation
            first = name if not name.startswith("_") else first
            stem = re.match(r"(.*?)_(?:\d|\*|LT_|GT_)", first)[1] if "_" in first else first
            names.append(name if not name.startswith("_") else stem + name)
        if "128 bits" in cells[2]:
            cells[2] = cells[2].replace("128 bits", "4, 2")
        numbers = [int(n) for n in re.findall(r"(?<![\w`-])\d+(?![\w-])", re.sub(r"`[^`]*`|\d+ lags", "", cells[2]))]
        each = len(numbers) == len(names)
        for k, name in enumerate(names):
            yield name, [numbers[k]] if each else numbers


def values(argument, text):
    """The numbers that a template argument stands for in a file."""
    if argument.isdigit():
        return {int(argument)}
    if argument.startswith("16 / sizeof"):
        return {4, 2}
    found = set()
    for value in re.findall(r"constexpr \w+ %s = ([^;]+);" % re.escape(argument.split("<")[0]), text):
        found |= {4, 2} if "16 / sizeof" in value else {int(n) for n in re.findall(r"(?<![\w.])\d+(?!\w)", value)}
    return found


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    rows = list(table(pathlib.Path(sys.argv[1]).read_text()))
    faults, held = [], 0
    for path in sorted(pathlib.Path(sys.argv[2]).glob("*/*.cpp")):
        text = path.read_text()
        arguments = re.findall(r"BodyAndTail<([^,>()]+(?:\([^)]*\))?(?:<\w+>)?)", text)
        shared = set().union(*(values(argument.strip(), text) for argument in arguments)) if arguments else set()
        if not shared:
            continue
        told = set()
        members = {name: body for name, body in re.findall(r"OrvaStatus ORVAS_(\w+)\(.*?\{\n(.*?)\n\}", text, re.S)}
        members.update((name, "") for name in re.findall(r"\bORVAS_(\w+)\b", re.sub(r"(?s)OrvaStatus ORVAS_.*?\n\}", "",
                                                                                   text)))
        for pattern, blocks in rows:
            for name in fnmatch.filter(members, pattern):
                own = {int(n) for n in re.findall(r"(?:BodyAndTail|return \w+)<(\d+)", members[name])}
                told |= set(blocks)
                held += 1
                if own and not own & set(blocks) or not own and not shared & set(blocks):
                    faults.append(f"{path}: {name}: {sorted(own or shared)} in the code, {blocks} in the table")
        if told:
            faults += [f"{path}: BodyAndTail<{n}> stands in no row of the table" for n in sorted(shared - told)]
    print("\n".join(faults) or f"{held} members have the blocks of the table")
    sys.exit(bool(faults) or held == 0)


if __name__ == "__main__":
    main()
