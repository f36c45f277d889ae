#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks that every #include keeps to the layers of the house.

    check_layers.py [ROOT]      the tree at ROOT, the repository by default
    check_layers.py --self-test proves that each rule can fail

The rules:
  platform    core includes itself only; renderer and audio also core; scene also those three.
  headers     of the runtime (include/, src/) include the platform and runtime folders that stand
              before their own in RUNTIME; effects2d and effects3d don't see each other.
  sources     of the runtime include any runtime header, the platform and the standard library.
  third party only in platform/*/src, platform/*/tests, apps/, benchmarks/ and the sources of
              tests/support; GoogleTest and the system's headers in all tests.
  private     a quoted include names a file of the same library; the baselines of benchmarks are fed
              by the renderer's compiler.
"""
import os
import re
import sys
import tempfile

PLATFORM = {
    "core": {"core"},
    "renderer": {"core", "renderer"},
    "audio": {"core", "audio"},
    "scene": {"core", "renderer", "audio", "scene"},
}
# Rank of each folder of the runtime, lowest first.
RUNTIME = {"serialize": 0, "object": 1, "plugin": 2, "resource": 3, "timeline": 4, "schematics": 5,
           "effects2d": 6, "effects3d": 6, "editor": 7, "host": 8}
STANDARD = set("""
algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes
climits clocale cmath codecvt compare complex concepts condition_variable coroutine csetjmp csignal cstdarg
cstddef cstdint cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem
format forward_list fstream functional future initializer_list iomanip ios iosfwd iostream istream iterator
latch limits list locale map memory memory_resource mutex new numbers numeric optional ostream queue random
ranges ratio regex scoped_allocator semaphore set shared_mutex source_location span sstream stack stdexcept
stop_token streambuf string string_view syncstream system_error thread tuple type_traits typeindex typeinfo
unordered_map unordered_set utility valarray variant vector version""".split())
# Tests also call the system itself: to set limits, to make calls fail, to kill a process.
TEST_LIBRARIES = ("gtest/", "gmock/", "sys/", "dlfcn.h", "fcntl.h", "malloc.h", "signal.h", "unistd.h")
TOP = ("include", "src", "platform", "apps", "examples", "tests", "benchmarks")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.M)


def third_party_allowed(parts, is_header):
    if parts[0] in ("apps", "benchmarks"):
        return True
    if parts[0] == "platform":
        return parts[2] in ("src", "tests")
    return parts[:2] == ["tests", "support"] and not is_header


def library_of(parts):
    """What may be included in quotes from here: the folders that belong to the same library."""
    if parts[0] == "platform":
        return ["/".join(parts[:3]), "/".join(parts[:2] + ["src"])]
    if parts[0] == "examples":
        return ["/".join(parts[:2]), "examples/support"]
    if parts[0] == "apps":
        return ["/".join(parts[:2])]
    if parts[0] == "benchmarks":
        return ["benchmarks", "platform/renderer/src"]
    return [parts[0]]


def own_include_rule(parts, is_header, folder):
    """Why `folder` of <helvantine/folder/…> can't be seen from here, or None."""
    if parts[0] == "platform":
        allowed = set(PLATFORM[parts[1]])
        if parts[2] == "tests":
            allowed.add("testsupport")
        return None if folder in allowed else f"platform/{parts[1]} stands below {folder}"
    if folder in PLATFORM or folder is None:
        return None
    if folder == "testsupport":
        is_test = parts[0] in ("tests", "benchmarks") or "tests" in parts
        return None if is_test else "test support belongs to the tests"
    if folder not in RUNTIME:
        return f"no such folder: {folder}"
    if parts[0] not in ("include", "src") or not is_header:
        return None
    own = parts[2] if parts[0] == "include" else parts[1]
    if len(parts) < (4 if parts[0] == "include" else 3):
        return "a header above the folders includes nothing of the runtime"
    if folder == own or RUNTIME[folder] < RUNTIME[own]:
        return None
    return f"header of {own} reaches up to {folder}"


def check_include(root, parts, is_header, quote, name):
    if quote == '"':
        here = os.path.join(root, *parts[:-1])
        candidates = [here] + [os.path.join(root, folder) for folder in library_of(parts)]
        for candidate in candidates:
            path = os.path.normpath(os.path.join(candidate, name))
            if os.path.isfile(path):
                relative = os.path.relpath(path, root)
                inside = any(relative.startswith(folder + "/") for folder in library_of(parts))
                return None if inside else f'"{name}" is private to another library'
        return None if parts[0] == "apps" else f'"{name}" is no file of this library'
    if name.startswith("helvantine/"):
        pieces = name.split("/")
        return own_include_rule(parts, is_header, pieces[1] if len(pieces) > 2 else None)
    if name in STANDARD or third_party_allowed(parts, is_header):
        return None
    if name.startswith(TEST_LIBRARIES) and parts[0] == "tests":
        return None
    return f"third-party header <{name}>"


def check_private_effects(parts, name):
    """effects2d and effects3d don't use each other's private headers, in sources either."""
    if parts[0] != "src" or parts[1] not in ("effects2d", "effects3d"):
        return None
    other = "effects3d" if parts[1] == "effects2d" else "effects2d"
    return f"private part of {other}" if f"{other}/" in name else None


def check_tree(root):
    problems, count = [], 0
    for top in TOP:
        for folder, folders, files in os.walk(os.path.join(root, top)):
            folders.sort()
            for file in sorted(files):
                if not file.endswith((".h", ".cpp", ".hpp", ".inl")):
                    continue
                count += 1
                path = os.path.join(folder, file)
                parts = os.path.relpath(path, root).split(os.sep)
                is_header = not file.endswith(".cpp")
                with open(path, encoding="utf-8") as source:
                    text = source.read()
                for match in INCLUDE.finditer(text):
                    why = check_include(root, parts, is_header, *match.groups())
                    if why is None and match.group(1) == '"':
                        why = check_private_effects(parts, match.group(2))
                    if why:
                        line = text.count("\n", 0, match.start(2)) + 1
                        problems.append(f"{'/'.join(parts)}:{line}: {why}")
    return problems, count


# File, its include, and whether it breaks a rule.
SELF_TEST = [
    ("platform/core/src/math/A.cpp", "<helvantine/renderer/Renderer.h>", True),
    ("platform/audio/src/A.cpp", "<helvantine/renderer/Renderer.h>", True),
    ("platform/renderer/src/A.cpp", "<vulkan/vulkan.h>", False),
    ("platform/renderer/src/B.cpp", '"../../core/src/Private.h"', True),
    ("platform/renderer/include/helvantine/renderer/A.h", "<vulkan/vulkan.h>", True),
    ("platform/renderer/include/helvantine/renderer/B.h", "<helvantine/core/Vec3.h>", False),
    ("platform/renderer/include/helvantine/renderer/C.h", "<helvantine/host/Application.h>", True),
    ("include/helvantine/object/A.h", "<helvantine/timeline/Effect.h>", True),
    ("include/helvantine/timeline/A.h", "<helvantine/object/Object.h>", False),
    ("include/helvantine/timeline/B.h", "<helvantine/timeline/Layer.h>", False),
    ("include/helvantine/timeline/C.h", "<zip.h>", True),
    ("include/helvantine/effects2d/A.h", "<helvantine/effects3d/CameraEffect.h>", True),
    ("include/helvantine/host/A.h", "<vector>", False),
    ("src/object/A.cpp", "<helvantine/timeline/Effect.h>", False),
    ("src/object/A.h", "<helvantine/timeline/Effect.h>", True),
    ("src/object/B.cpp", "<unistd.h>", True),
    ("src/object/C.cpp", "<helvantine/nowhere/A.h>", True),
    ("src/object/D.cpp", '"Missing.h"', True),
    ("src/effects2d/A.cpp", '"effects3d/Private.h"', True),
    ("src/effects3d/B.cpp", '"Private.h"', False),
    ("apps/tool/main.cpp", "<CLI/CLI.hpp>", False),
    ("examples/01/main.cpp", "<nlohmann/json.hpp>", True),
    ("examples/01/A.cpp", '"Shared.h"', False),
    ("examples/01/B.cpp", '"../02/Own.h"', True),
    ("tests/host/A.cpp", "<gtest/gtest.h>", False),
    ("tests/host/B.cpp", "<stb/stb_image.h>", True),
    ("tests/support/A.cpp", "<stb/stb_image.h>", False),
    ("tests/support/A.h", "<stb/stb_image.h>", True),
    ("benchmarks/support/A.h", "<vulkan/vulkan.h>", False),
    ("benchmarks/support/A.cpp", '"../../platform/core/src/Private.h"', True),
]
SELF_TEST_FILES = ("platform/core/src/Private.h", "src/effects3d/Private.h", "examples/support/Shared.h",
                   "examples/02/Own.h")


def self_test():
    wrong = []
    for path, include, breaks in SELF_TEST:
        with tempfile.TemporaryDirectory() as root:
            for name, text in [(path, f"#include {include}\n")] + [(f, "") for f in SELF_TEST_FILES]:
                os.makedirs(os.path.dirname(os.path.join(root, name)), exist_ok=True)
                with open(os.path.join(root, name), "w", encoding="utf-8") as file:
                    file.write(text)
            problems, _ = check_tree(root)
            if bool(problems) != breaks:
                wrong.append(f"{path} with {include}: {problems or 'accepted'}")
    return wrong, len(SELF_TEST)


def main():
    arguments = sys.argv[1:]
    if arguments == ["--self-test"]:
        problems, count = self_test()
    else:
        root = arguments[0] if arguments else os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
        problems, count = check_tree(root)
        if count == 0:
            problems = [f"{root}: no sources found"]
    for problem in problems:
        print(problem)
    print(f"layers: {count} checked, {len(problems)} wrong")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
