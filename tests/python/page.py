#!/usr/bin/python3
"""Runs the python blocks of a page, one after the other; a text block behind one is what it must print. A block that
is introduced by a link to a script must stand in it.   page.py PAGE"""
import contextlib
import io
import pathlib
import re
import sys

names, failed = {}, False
path = pathlib.Path(sys.argv[1])
blocks = re.findall(r"(?:\]\((\S+\.py)\):\n\n)?^```python\n(.*?)^```\n(?:\n*^```text\n(.*?)^```)?", path.read_text(),
                    re.M | re.S)
for script, code, expected in blocks:
    if script:
        if code not in (path.parent / script).read_text():
            failed = True
            print(f"{code}is not in {script}")
        continue
    with contextlib.redirect_stdout(io.StringIO()) as said:
        exec(code, names)
    if said.getvalue() != expected:
        failed = True
        print(f"{code}says\n{said.getvalue()}and not\n{expected}")
print(len(blocks), "blocks")
sys.exit(failed or not blocks)
