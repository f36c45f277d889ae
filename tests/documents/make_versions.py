#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Wrote version-1.hfx to version-7.hfx, the documents of every format version, byte by byte.

Kept to tell how they were made. The build never runs it, and the files are never written again: they are the past
that the runtime must go on reading. A new format version gets a new file.
"""

import struct
import sys
import uuid
import zipfile

LAYER = "EFFE8B44-942F-11E4-9F81-B6780E197DCE"
CLEAR_SCREEN = "0110CE73-98C9-11E4-B0CA-E019C0AE954C"
CAMERA = "1DC6E113-A7D2-11E4-9961-C89E980781C1"
EFFECT_NODE = "5FE53618-9EA0-11E4-94E8-EE928442EA2F"
FLOAT, VECTOR, COLOR, BOOL = 0, 3, 6, 7


class Script:
    def __init__(self, version):
        self.version, self.bytes, self.ticks = version, b"", 0

    def put(self, form, *values):
        self.bytes += struct.pack("<" + form, *values)

    def uint(self, value):
        self.put("I", value)

    def flags(self, *values):
        self.put("%dB" % len(values), *values)

    def id(self, text):
        self.bytes += uuid.UUID(text).bytes_le

    def own_id(self, number):
        self.id("00000000-0000-0000-0000-%012d" % number)

    def text(self, value):
        self.uint(len(value.encode()))
        self.bytes += value.encode()

    def curve(self, components):
        self.put("III", 2, 0, 1)
        for time in (0.0, 2.0):
            self.put("fI5f", time, 1, 0, 0, 0, 0, 0)
            self.put("8f", *([0.0] * 8))
            self.put("i", 0)
            self.put("%df" % components, *([time / 2] * components))

    def property(self, number, name, kind, value, components=0):
        self.ticks += 1
        self.text(name)
        self.put("i", kind)
        self.own_id(number)
        self.flags(0)
        self.put("i", 120)
        self.text(value)
        self.flags(components != 0)
        if components:
            self.curve(components)

    def object(self, class_id, number, name, start, end, groups=(), children=()):
        self.ticks += 1
        self.id(class_id)
        self.own_id(number)
        self.text(name)
        self.flags(1, 1)
        self.put("ii", start, end)
        self.uint(len(groups))
        for group_number, group_name, properties in groups:
            self.own_id(group_number)
            self.text(group_name)
            self.flags(0, 1)
            self.uint(len(properties))
            for prop in properties:
                self.property(*prop)
        self.uint(0)
        self.uint(len(children))
        for child in children:
            child()

    def node(self, number):
        self.object(EFFECT_NODE, number, "EffectNode", 0, 120)
        self.put("ff", 10.0 * number, -1.0)

    def effect(self, class_id, number, name, start, end, groups=(), children=()):
        self.object(class_id, number, name, start, end, groups, children)
        self.node(number + 1)

    def clear_screen(self):
        attributes = [(23, "Color", COLOR, "0.250000, 0.500000, 0.750000, 1.000000", 4),
                      (24, "Depth", FLOAT, "0.500000"),
                      (25, "Gone", FLOAT, "7.000000", 1),
                      (26, "Clear Color Target", BOOL, "0"),
                      (27, "Clear Depth Target", BOOL, "0")]
        self.effect(CLEAR_SCREEN, 20, "clear", 5, 50, [(22, "Attributes", attributes)])

    def resource_folder(self, number, name, children):
        self.ticks += 1
        self.flags(1)
        self.own_id(number)
        self.text(name)
        if self.version < 6:
            self.text("about " + name)
        self.flags(0)
        self.uint(len(children))
        for child in children:
            self.resource_folder(*child)

    def composition(self, number, name, is_folder, children=(), with_effect=False):
        self.own_id(number)
        self.text(name)
        self.flags(is_folder, 1)
        if self.version >= 3:
            self.put("f", 33.0)
        if self.version >= 5:
            camera = [(number + 7, "Position", VECTOR, "1.000000, 2.000000, 3.000000")]
            self.effect(CAMERA, number + 1, "Camera", 0, 120, [(number + 6, "Transformation", camera)])
        self.effect(LAYER, number + 3, "Layer", 0, 120, (), [self.clear_screen] if with_effect else [])
        self.uint(len(children))
        for child in children:
            self.composition(*child)
        # The graph: the effect's node for a second time, and a link between its flags.
        self.uint(1 if with_effect else 0)
        if with_effect:
            self.flags(1)
            self.own_id(20)
            self.node(21)
        self.uint(1 if with_effect else 0)
        if with_effect:
            self.own_id(26)
            self.own_id(27)

    def document(self):
        self.uint(self.version)
        self.text("Version %d" % self.version)
        self.put("i", 25)
        if self.version >= 2:
            self.put("II", 640, 360)
        self.resource_folder(1, "", [(2, "pictures", [(3, "old", [])]), (4, "sounds", [])])
        self.ticks += 1
        self.composition(100, "root", True, [(200, "Main", False, (), True)])
        if self.version >= 7:
            self.uint(self.ticks)
        return self.bytes


for version in range(1, 8):
    with zipfile.ZipFile("%s/version-%d.hfx" % (sys.argv[1], version), "x") as archive:
        entry = zipfile.ZipInfo("Helvantine.Script", (1980, 1, 1, 0, 0, 0))
        entry.compress_type = zipfile.ZIP_DEFLATED
        archive.writestr(entry, Script(version).document())
