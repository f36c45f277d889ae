#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks that the code in docs/plugins.md is code of the example that it tells of: each block stands, as it
is, in one of its files."""
import os
import re
import sys

root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
example = os.path.join(root, "examples", "02-plugin")
sources = []
for folder, _, names in os.walk(example):
    for name in names:
        with open(os.path.join(folder, name), encoding="utf-8") as file:
            sources.append("\n" + file.read())
with open(os.path.join(root, "docs", "plugins.md"), encoding="utf-8") as file:
    blocks = re.findall(r"^```\w+\n(.*?)^```$", file.read(), re.M | re.S)
strange = [block for block in blocks if not any("\n" + block in source for source in sources)]
for block in strange:
    print(f"docs/plugins.md: not in examples/02-plugin:\n{block}")
print(f"snippets: {len(blocks)} checked, {len(strange)} wrong")
sys.exit(1 if strange or not blocks else 0)
