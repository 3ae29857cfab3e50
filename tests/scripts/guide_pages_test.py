#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Shows that every page of the guide is in its list, has a program, and has that program tested, and
that every room of the sources has a page.
"""

import re
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
GUIDE = ROOT / "docs" / "guide"
PROGRAMS = ROOT / "examples" / "guide"
# The pages whose programs show what a room is for.
PAGES_OF_ROOMS = {
    "Platform/Locale": ["machine"],
    "Platform/Network": ["run-loop"],
    "Platform/Numbers": ["formats"],
    "Platform/Observation": ["observing", "properties"],
    "Platform/Predicates": ["searching"],
    "Platform/RunLoop": ["operations", "run-loop"],
    "Platform/Runtime": ["errors", "properties"],
    "Platform/Storage": ["machine", "properties"],
    "Platform/System": ["log"],
    "Platform/Text": ["texts"],
    "Platform/Time": ["dates"],
    "Platform/Values": ["errors", "searching"],
    "RVFoundation/BackgroundExecution": ["operations", "run-loop"],
    "RVFoundation/CardReading": ["cards"],
    "RVFoundation/CoreServices": ["errors", "log"],
    "RVFoundation/Formatters": ["formats"],
    "RVFoundation/PlatformUtilities": ["dates", "machine", "storage"],
    "RVFoundation/RuntimeServices": ["properties", "searching", "storage"],
    "RVFoundation/ServerDiscovery": ["connection", "signals", "storage"],
    "RVFoundation/Streaming": ["answers", "errors"],
    "RVFoundation/Text": ["cards", "texts"],
}
# Rooms that programs use without including them: what stands above shows what they do.
SHOWN_THROUGH = {
    "Platform/System": "RVFoundation/CoreServices/",
    "Platform/Text": "RVFoundation/Text/",
    "Platform/Time": "RVFoundation/PlatformUtilities/",
}


def words_of(path):
    text = re.sub(r"#.*", "", path.read_text(encoding="utf-8"))
    return {word.removeprefix("guide-") for word in re.findall(r"[\w-]+", text)}


class GuidePages(unittest.TestCase):
    def setUp(self):
        self.pages = {page.stem for page in GUIDE.glob("*.md")} - {"README"}

    def test_the_list_names_every_page_once_and_nothing_else(self):
        listed = re.findall(r"^- \[.+\]\((.+)\.md\)$", (GUIDE / "README.md").read_text("utf-8"),
                            re.MULTILINE)
        self.assertEqual(sorted(listed), sorted(self.pages))

    def test_every_page_has_a_program_and_every_program_a_page(self):
        self.assertEqual({program.stem for program in PROGRAMS.glob("*.cpp")}, self.pages)

    def test_every_program_is_built_and_tested(self):
        for path in (PROGRAMS / "CMakeLists.txt", ROOT / "tests" / "examples" / "CMakeLists.txt",
                     ROOT / "tests" / "startup" / "CMakeLists.txt"):
            with self.subTest(path):
                self.assertLessEqual(self.pages, words_of(path))

    def test_every_room_has_a_page(self):
        rooms = {str(room.relative_to(ROOT)) for layer in ("Platform", "RVFoundation")
                 for room in (ROOT / layer).iterdir() if room.is_dir()}
        self.assertEqual({room for room, pages in PAGES_OF_ROOMS.items() if pages}, rooms)
        self.assertLessEqual({page for pages in PAGES_OF_ROOMS.values() for page in pages},
                             self.pages)

    def test_the_programs_of_a_rooms_pages_use_the_room(self):
        for room, pages in PAGES_OF_ROOMS.items():
            for page in pages:
                with self.subTest(room=room, page=page):
                    self.assertIn(f'#include "{SHOWN_THROUGH.get(room, room + "/")}',
                                  (PROGRAMS / f"{page}.cpp").read_text(encoding="utf-8"))


if __name__ == "__main__":
    unittest.main()
