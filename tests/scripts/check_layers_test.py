#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Shows that scripts/check-layers passes a sound tree and catches each kind of violation."""

import subprocess
import tempfile
import unittest
from pathlib import Path

CHECK_LAYERS = Path(__file__).resolve().parents[2] / "scripts" / "check-layers"
LICENCE = "// SPDX-License-Identifier: Apache-2.0\n"
HASH_LICENCE = "# SPDX-License-Identifier: Apache-2.0\n"
SOURCES = HASH_LICENCE + "target_sources"

SOUND_TREE = {
    "Platform/Export.h": LICENCE,
    "Platform/CMakeLists.txt": SOURCES + "(P PUBLIC FILE_SET HEADERS FILES Export.h)",
    "Platform/Runtime/NSObject.h": LICENCE + '#include <memory>\n#include "Platform/Export.h"\n',
    "Platform/Runtime/CMakeLists.txt":
        SOURCES + "(P PUBLIC FILE_SET HEADERS FILES NSObject.h)",
    "Platform/Values/NSData.h": LICENCE + '#include "Platform/Runtime/NSObject.h"\n',
    "Platform/Values/Bytes.h": LICENCE + "#include <zlib.h>\n",
    "Platform/Values/Inner/Buffer.h": LICENCE,
    "Platform/Values/CMakeLists.txt":
        SOURCES + "(P PRIVATE Bytes.h Inner/Buffer.h PUBLIC FILE_SET HEADERS FILES NSData.h)",
    "RVFoundation/Text/Escapes.cpp": LICENCE + '#include "Platform/Values/NSData.h"\n',
    "RVFoundation/Streaming/Inflater.cpp": LICENCE + "#include <zlib.h>\n#include <sys/uio.h>\n",
    "RVFoundation/Formatters/Amounts.cpp": LICENCE,
    "scripts/build": "#!/bin/sh\n" + HASH_LICENCE,
}


class CheckLayers(unittest.TestCase):
    def problems_of(self, changes):
        """What the check prints about the sound tree with these files put in or replaced."""
        with tempfile.TemporaryDirectory() as root:
            for path, text in {**SOUND_TREE, **changes}.items():
                file = Path(root, path)
                file.parent.mkdir(parents=True, exist_ok=True)
                file.write_text(text, encoding="utf-8")
            done = subprocess.run([CHECK_LAYERS, root], capture_output=True, text=True, check=False)
        self.assertEqual(done.stderr, "")
        lines = done.stdout.splitlines()
        self.assertEqual(done.returncode, 0 if lines[0].startswith("check-layers:") else 1)
        return lines

    def assert_caught(self, changes, *expected):
        self.assertEqual(self.problems_of(changes), list(expected))

    def test_passes_a_sound_tree(self):
        self.assert_caught({}, "check-layers: 8 files keep to their layers")

    def test_catches_the_platform_including_the_library(self):
        self.assert_caught(
            {"Platform/Runtime/A.cpp": LICENCE + '#include "RVFoundation/Text/Escapes.h"\n'},
            "Platform/Runtime/A.cpp: Platform includes 'RVFoundation/Text/Escapes.h' of another "
            "layer")

    def test_catches_a_layer_including_what_is_built_on_it(self):
        self.assert_caught(
            {"RVFoundation/Text/A.cpp": LICENCE + '#include "tools/rvf/Masking.h"\n'},
            "RVFoundation/Text/A.cpp: RVFoundation includes 'tools/rvf/Masking.h' of another layer")

    def test_catches_an_include_of_a_higher_floor_of_the_platform(self):
        self.assert_caught(
            {"Platform/Runtime/A.cpp": LICENCE + '#include "Platform/Values/NSData.h"\n'},
            "Platform/Runtime/A.cpp: includes 'Platform/Values/NSData.h' of a higher floor")

    def test_catches_an_include_of_a_higher_floor_of_the_library(self):
        self.assert_caught(
            {"RVFoundation/Text/A.cpp":
                 LICENCE + '#  include "RVFoundation/Formatters/Amounts.cpp"\n'},
            "RVFoundation/Text/A.cpp: includes 'RVFoundation/Formatters/Amounts.cpp' of a higher "
            "floor")

    def test_catches_a_room_without_a_floor(self):
        self.assert_caught({"Platform/Attic/A.cpp": LICENCE},
                           "Platform/Attic/A.cpp: 'Attic' is no room of Platform")

    def test_catches_an_include_that_leads_nowhere(self):
        self.assert_caught(
            {"Platform/Values/A.cpp": LICENCE + '#include "Platform/Values/Gone.h"\n'},
            "Platform/Values/A.cpp: includes 'Platform/Values/Gone.h', which does not exist")

    def test_catches_third_party_includes_in_installed_headers(self):
        for name in ("uv.h", "fmt/format.h", "boost/locale.hpp", "unicode/unistr.h", "zlib.h",
                     "avahi-core/core.h", "systemd/sd-bus.h", "uuid/uuid.h", "libxml/parser.h", "QObject"):
            with self.subTest(name):
                self.assert_caught(
                    {"Platform/Values/NSData.h": LICENCE + f"#include <{name}>\n"},
                    f"Platform/Values/NSData.h: an installed header includes third-party <{name}>")

    def test_catches_declarations_of_third_party_types_in_installed_headers(self):
        for code, declaration in (
                ("struct uv_loop_s;", "struct uv_loop_s ;"),
                ("namespace rvf {\nclass A {};\n}\ntypedef struct sd_bus sd_bus;",
                 "typedef struct sd_bus sd_bus ;"),
                ("struct AvahiServer; namespace rvf {}", "struct AvahiServer ;"),
                ("namespace icu { class Calendar; }", "namespace icu {"),
                ("typedef struct _xmlNode xmlNode;", "typedef struct _xmlNode xmlNode ;"),
                ("/* rvf */ struct z_stream_s; // zlib", "struct z_stream_s ;"),
                ("typedef void* plist_t;", "typedef void * plist_t ;"),
                ("using CURL = void;", "using CURL = void ;"),
                ('extern "C" { struct uv_loop_s; }', "extern {")):
            with self.subTest(code):
                self.assert_caught(
                    {"Platform/Values/NSData.h": LICENCE + code + "\n"},
                    f"Platform/Values/NSData.h: an installed header declares '{declaration}' "
                    "outside namespace rvf")

    def test_lets_headers_declare_what_is_their_own_or_the_systems(self):
        for path, code in (
                ("Platform/Values/NSData.h",
                 '#define TEXT "struct uv_loop_s;" \\\n  struct z_stream_s;\n// struct sd_bus;\n'
                 "struct sockaddr;\nnamespace rvf { class Text; /* } */ }\n"
                 "template <> struct std::hash<rvf::Text> {};\n"),
                ("Platform/Values/Bytes.h", "struct z_stream_s;\n"),
                ("RVFoundation/Text/A.cpp", "struct uv_loop_s;\n")):
            with self.subTest(path):
                self.assertIn("keep to their layers", self.problems_of({path: LICENCE + code})[0])

    def test_catches_third_party_includes_of_the_library_outside_streaming(self):
        self.assert_caught({"RVFoundation/Text/A.cpp": LICENCE + "#include <zlib.h>\n"},
                           "RVFoundation/Text/A.cpp: this room includes third-party <zlib.h>")

    def test_catches_an_installed_header_including_a_private_one(self):
        self.assert_caught(
            {"Platform/Values/NSData.h": LICENCE + '#include "Platform/Values/Bytes.h"\n'},
            "Platform/Values/NSData.h: an installed header includes 'Platform/Values/Bytes.h', "
            "which is not")

    def test_catches_a_circle_of_files(self):
        self.assert_caught(
            {"Platform/Values/NSData.h": LICENCE + '#include "Platform/Values/NSText.h"\n',
             "Platform/Values/NSText.h": LICENCE + '#include "Platform/Values/NSData.h"\n',
             "Platform/Values/CMakeLists.txt":
                 SOURCES + "(P PRIVATE Bytes.h Inner/Buffer.h PUBLIC FILE_SET HEADERS\n"
                 "  FILES NSData.h # data\n  NSText.h)"},
            "Platform/Values/NSData.h: circle of files: Platform/Values/NSData.h -> "
            "Platform/Values/NSText.h -> Platform/Values/NSData.h")

    def test_catches_a_circle_of_rooms_on_one_floor(self):
        self.assert_caught(
            {"RVFoundation/Formatters/A.cpp":
                 LICENCE + '#include "RVFoundation/Streaming/Inflater.cpp"\n',
             "RVFoundation/Streaming/A.cpp":
                 LICENCE + '#include "RVFoundation/Formatters/Amounts.cpp"\n'},
            "RVFoundation/Formatters: circle of rooms: RVFoundation/Formatters -> "
            "RVFoundation/Streaming -> RVFoundation/Formatters")

    def test_catches_a_header_that_its_room_does_not_list(self):
        self.assert_caught({"Platform/Values/NSSet.h": LICENCE},
                           "Platform/Values/NSSet.h: is not listed in its room's CMakeLists.txt")

    def test_catches_a_listed_header_that_is_gone(self):
        self.assert_caught(
            {"RVFoundation/Text/CMakeLists.txt": SOURCES + "(R PRIVATE Gone.h)"},
            "RVFoundation/Text/Gone.h: is listed in CMakeLists.txt but does not exist")

    def test_catches_names_that_say_nothing(self):
        for path in ("Platform/Values/Utils.cpp", "docs/misc.md", "tests/common/Clock.cpp"):
            with self.subTest(path):
                self.assert_caught({path: LICENCE}, f"{path}: has a name that says nothing")

    def test_catches_a_source_without_its_licence_line(self):
        self.assert_caught({"tests/ClockTest.cpp": "#include <ctime>\n" + LICENCE},
                           "tests/ClockTest.cpp: does not begin with the SPDX line")

    def test_catches_a_script_without_its_licence_line(self):
        for path in ("scripts/run", ".ci/run", "tests/tools/rvf_test.py"):
            with self.subTest(path):
                self.assert_caught({path: "#!/bin/sh\nset -e\n"},
                                   f"{path}: has no SPDX line among its first two")

    def test_catches_build_files_and_catalogues_without_their_licence_line(self):
        for path in ("CMakeLists.txt", "cmake/Package.cmake", "cmake/Config.cmake.in",
                     ".clang-tidy", "docs/Doxyfile", "cmake/library.pc.in", "po/de/Library.po"):
            with self.subTest(path):
                self.assert_caught({path: "# What it is for.\n\n" + HASH_LICENCE},
                                   f"{path}: has no SPDX line among its first two")

    def test_asks_for_no_licence_line_where_a_format_has_no_comments(self):
        self.assert_caught({"CMakePresets.json": "{}\n", "fuzz/corpus/seed.bin": "#",
                            "docs/guide/cards.md": "# Cards\n"},
                           "check-layers: 8 files keep to their layers")


if __name__ == "__main__":
    unittest.main()
