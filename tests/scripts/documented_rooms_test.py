#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Shows that README.md and docs/architecture.md draw and list the rooms as scripts/check-layers
knows them."""

import re
import unittest
from importlib.machinery import SourceFileLoader
from importlib.util import module_from_spec, spec_from_loader
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]


def floors():
    loader = SourceFileLoader("check_layers", str(ROOT / "scripts" / "check-layers"))
    check_layers = module_from_spec(spec_from_loader(loader.name, loader))
    loader.exec_module(check_layers)
    return check_layers.FLOORS


def page(path):
    return (ROOT / path).read_text(encoding="utf-8")


def picture_of(layer, text):
    """What stands in the layer's box of the first picture that has one."""
    picture = next(block for block in re.findall(r"^```\n(.*?)^```$", text, re.DOTALL | re.MULTILINE)
                   if "│ Platform " in block)
    box = picture[picture.index(f"│ {layer} "):]
    return box[:box.index("└")]


def rooms_in_order(picture, rooms):
    return sorted((room for room in rooms if re.search(rf"\b{room}\b", picture)),
                  key=lambda room: re.search(rf"\b{room}\b", picture).start())


class DocumentedRooms(unittest.TestCase):
    def setUp(self):
        self.floors = floors()
        self.platform = [room for floor in self.floors["Platform"] for room in floor]
        self.library = {room for floor in self.floors["RVFoundation"] for room in floor}

    def test_the_readme_draws_the_platform_from_the_lowest_floor_up(self):
        drawn = rooms_in_order(picture_of("Platform", page("README.md")), self.platform)
        self.assertEqual(drawn, self.platform)

    def test_the_architecture_draws_the_platform_from_the_highest_floor_down(self):
        drawn = rooms_in_order(picture_of("Platform", page("docs/architecture.md")), self.platform)
        self.assertEqual(drawn, self.platform[::-1])

    def test_both_draw_every_room_of_the_library(self):
        for path in ("README.md", "docs/architecture.md"):
            with self.subTest(path):
                drawn = rooms_in_order(picture_of("RVFoundation", page(path)), self.library)
                self.assertEqual(set(drawn), self.library)

    def test_the_readme_lists_every_room_and_no_other(self):
        for layer, rooms in (("Platform", self.platform), ("RVFoundation", self.library)):
            listed = re.findall(rf"^\| `{layer}/(\w+)` \|", page("README.md"), re.MULTILINE)
            self.assertEqual(sorted(listed), sorted(rooms))

    def test_the_architecture_lists_every_room_and_no_other(self):
        text = page("docs/architecture.md")
        for layer, rooms in (("Platform", self.platform), ("RVFoundation", self.library)):
            table = re.search(rf"^\| {layer} \|.*?\n\n", text, re.DOTALL | re.MULTILINE).group()
            self.assertEqual(sorted(re.findall(r"^\| `(\w+)` \|", table, re.MULTILINE)),
                             sorted(rooms))


if __name__ == "__main__":
    unittest.main()
