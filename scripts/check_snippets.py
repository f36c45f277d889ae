#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks that the code in a guide is code of the example that it tells of: each block stands, as it is, in one of
the example's files."""
import os
import re
import sys

GUIDES = {"plugins.md": "02-plugin", "embedding.md": "00-embed"}
root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def check(guide, example):
    """True if the guide has blocks and all of them are the example's."""
    sources = []
    for folder, _, names in os.walk(os.path.join(root, "examples", example)):
        for name in names:
            with open(os.path.join(folder, name), encoding="utf-8") as file:
                sources.append("\n" + file.read())
    with open(os.path.join(root, "docs", guide), encoding="utf-8") as file:
        blocks = re.findall(r"^```\w+\n(.*?)^```$", file.read(), re.M | re.S)
    strange = [block for block in blocks if not any("\n" + block in source for source in sources)]
    for block in strange:
        print(f"docs/{guide}: not in examples/{example}:\n{block}")
    print(f"docs/{guide}: {len(blocks)} blocks checked, {len(strange)} wrong")
    return bool(blocks) and not strange


results = [check(guide, example) for guide, example in GUIDES.items()]
sys.exit(0 if all(results) else 1)
