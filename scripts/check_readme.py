#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks that README.md shows the smallest example as it is built: the code block is the source without its
licence line."""
import os
import sys

root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
with open(os.path.join(root, "README.md"), encoding="utf-8") as file:
    readme = file.read()
with open(os.path.join(root, "examples", "00-embed", "main.cpp"), encoding="utf-8") as file:
    source = file.read().split("\n", 1)[1]
if f"```cpp\n{source}```" not in readme:
    print("README.md: its host isn't examples/00-embed/main.cpp")
    sys.exit(1)
