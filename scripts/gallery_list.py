#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Puts the gallery's effects into the list of its page, and prints the frames that show them.

usage: gallery_list.py PAGE INFO

INFO is what `helvantine info DOCUMENT --json` prints. The list stands between the page's two comments."""
import json
import re
import sys

INTO_A_ROOM = 35  # frames, to where each effect shows well


def main():
    page_path, info_path = sys.argv[1:]
    with open(info_path, encoding="utf-8") as file:
        rooms = json.load(file)["root"]["compositions"][0]["effects"]
    with open(page_path, encoding="utf-8") as file:
        page = file.read()
    rows = "".join(f"{number}. {room['name']}\n" for number, room in enumerate(rooms, 1))
    made, count = re.subn(r"(<!-- rooms -->\n).*(<!-- end -->)", lambda m: m[1] + rows + m[2], page, flags=re.S)
    if count != 1:
        sys.exit(f"{page_path}: holds no place for the list")
    with open(page_path, "w", encoding="utf-8") as file:
        file.write(made)
    print(f"{rooms[0]['start'] + INTO_A_ROOM}-{rooms[-1]['start'] + INTO_A_ROOM}")


main()
