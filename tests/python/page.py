#!/usr/bin/python3
"""Runs the python blocks of a page, one after the other; a text block behind one is what it must print.

page.py PAGE"""
import contextlib
import io
import pathlib
import re
import sys

names, failed = {}, False
page = pathlib.Path(sys.argv[1]).read_text()
blocks = re.findall(r"^```python\n(.*?)^```\n(?:\n*^```text\n(.*?)^```)?", page, re.M | re.S)
for code, expected in blocks:
    with contextlib.redirect_stdout(io.StringIO()) as said:
        exec(code, names)
    if said.getvalue() != expected:
        failed = True
        print(f"{code}says\n{said.getvalue()}and not\n{expected}")
print(len(blocks), "blocks")
sys.exit(failed or not blocks)
