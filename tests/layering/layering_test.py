#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Breaks a small tree in each way that layering.py must notice."""
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
sys.dont_write_bytecode = True
import layering  # noqa: E402 (found beside this file)

SPDX = f"// {layering.LICENCE}\n"

# The file, its content, and what the fault's line must say; "" where there is none.
CASES = {
    "downward": ("src/stats/A.cpp", SPDX + '#include "system/B.h"\n', ""),
    "own room": ("src/base/A.cpp", SPDX + '#include "base/B.h"\n', ""),
    "own moc file": ("src/ui/A.cpp", SPDX + '#include "A.moc"\n', ""),
    "libraries": ("src/base/A.cpp", SPDX + "#include <sys/stat.h>\n#include <QString>\n", ""),
    "upward": ("src/storage/A.h", SPDX + '#include "ui/B.h"\n', "storage may not use ui"),
    "sideways": ("src/network/A.h", SPDX + '#include "storage/B.h"\n', "network may not use storage"),
    "indented": ("src/base/A.h", SPDX + '#if 1\n #  include "app/B.h"\n#endif\n', "may not use app"),
    "application": ("src/ui/A.cpp", SPDX + '#include "app/Application.h"\n', "ui may not use app"),
    "angle brackets": ("src/ui/A.cpp", SPDX + "#include <base/Log.h>\n", "in double quotes"),
    "room left out": ("src/ui/A.cpp", SPDX + '#include "B.h"\n', "the room is missing"),
    "path upward": ("src/ui/A.cpp", SPDX + '#include "../app/B.h"\n', "the room .. is unknown"),
    "unknown room": ("src/attic/A.cpp", SPDX, "the room attic is unknown"),
    "no room": ("src/A.cpp", SPDX, "lies in no room"),
    "source without licence": ("tests/a/A.cpp", "int a;\n", "GPL-3.0-or-later is missing"),
    "script without licence": ("tools/a", "#!/bin/sh\n", "GPL-3.0-or-later is missing"),
    "licence too late": ("cmake/A.cmake", "\n\n\n# " + layering.LICENCE, "GPL-3.0-or-later is missing"),
    "text needs none": ("docs/a.md", "Words.\n", ""),
}


class Layering(unittest.TestCase):
    def test_finds_each_fault(self):
        for name, (path, content, expected) in CASES.items():
            with self.subTest(name), tempfile.TemporaryDirectory() as directory:
                root = pathlib.Path(directory)
                (root / path).parent.mkdir(parents=True)
                (root / path).write_text(content, encoding="utf-8")
                faults = layering.faults_of(root)
                self.assertEqual(len(faults), 1 if expected else 0, faults)
                self.assertIn(expected, "".join(faults))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
