# SPDX-License-Identifier: GPL-3.0-or-later
"""The description of the client API, and the page that shows it, as they are built in.

TALLYVANE_SOURCE names the sources, TALLYVANE_API_JSON the description that was made from its YAML.
"""
import base64
import hashlib
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import yaml

from description import Description, jsonschema

SOURCE = Path(os.environ["TALLYVANE_SOURCE"])
PAGES = SOURCE / "resources" / "clientapi"
RULES = Path(__file__).with_name("schema-3.0.json")

# Texts that a schema takes, and others that it must not.
TEXTS = {
    "CountText": (["0", "999", "1,000", "9,223,372,036,854,775,807"],
                  ["", "1000", "1,00", ",000", "1.000", "-1", "1,0000"]),
    "BytesText": (["0,00B", "489,00MB", "1023,99KB", "8,00EB"], ["489MB", "489.00MB", "1,5GB", "1,00MiB"]),
    "SecondsText": (["0s", "59s", "1m, 0s", "1h, 0m, 5s", "1d, 10h, 17m, 36s", "400d, 0h, 0m, 0s"],
                    ["60s", "1h, 5s", "24h, 0m, 0s", "0d, 0h, 0m, 1s", "1d,10h,17m,36s"]),
    "MilesText": (["0m", "116m", "1,234m"], ["1234m", "1,5m", "116"]),
    "InchesText": (["0,00m", "99,99m", "100m", "1,234m"], ["100,00m", "0,1m"]),
    "Rank": (["0", "1234"], ["1,234", "01", ""]),
    "RankText": (["0th", "1st", "11th", "123rd", "1,234th"], ["1", "1234th"]),
    "Rate": (["0,00", "8,12", "1234,50"], ["8", "8.12", "8,1"]),
    "BytesRate": (["0,00B/s", "317,49KB/s"], ["317,49KB", "317,49KB/m"]),
    "Time": (["", "2024-05-08T10:47:09.000"], ["2024-05-08 10:47:09", "2024-05-08T10:47:09Z"]),
}


def schemas_in(node):
    """Every schema of an object below NODE."""
    if isinstance(node, list):
        node = dict(enumerate(node))
    if isinstance(node, dict):
        if node.get("type") == "object" and "properties" in node:
            yield node
        for child in node.values():
            yield from schemas_in(child)


class TheDescription(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.source = (PAGES / "tallyvane-api-spec.yaml").read_text()
        cls.document = json.loads(Path(os.environ["TALLYVANE_API_JSON"]).read_text())
        cls.description = Description(cls.document)

    def test_is_valid(self):
        rules = jsonschema.Draft4Validator(json.loads(RULES.read_text()))
        self.assertEqual([f"{list(error.path)}: {error.message}" for error in rules.iter_errors(self.document)], [])
        self.assertEqual(self.document["openapi"], "3.0.3")
        for operation in self.description.operations().values():
            self.assertIn("operationId", operation)

    def test_json_says_what_yaml_says(self):
        self.assertEqual(yaml.safe_load(self.source), self.document)

    def test_objects_have_the_told_fields_and_no_others(self):
        schemas = list(schemas_in(self.document))
        self.assertGreater(len(schemas), 10)
        for schema in schemas:
            self.assertEqual(schema["required"], list(schema["properties"]))
            if "profile_id" not in schema["properties"]:  # A request may hold more.
                self.assertIs(schema["additionalProperties"], False, schema)

    def test_examples_are_what_they_are_examples_of(self):
        checked = 0
        for schema in self.document["components"]["schemas"].values():
            if "example" in schema:
                self.description.check_schema(self.description.resolved(schema), schema["example"])
                checked += 1
        for operation in self.description.operations().values():
            bodies = [operation.get("requestBody", {}), *operation["responses"].values()]
            for media in (media for body in bodies for media in body.get("content", {}).values()):
                for example in [example["value"] for example in media.get("examples", {}).values()]:
                    self.description.check_schema(media["schema"], example)
                    checked += 1
        self.assertGreater(checked, 5)

    def test_texts(self):
        for name, (good, bad) in TEXTS.items():
            for text in good:
                self.description.check(name, text)
            for text in bad:
                with self.subTest(schema=name, text=text), self.assertRaises(AssertionError):
                    self.description.check(name, text)

    def test_what_json_cannot_hold_is_refused(self):
        for text in "day: 2024-05-08", "200: number", "a: 1\na: 2", "a: .nan", "a: [":
            with self.subTest(yaml=text), tempfile.TemporaryDirectory() as directory:
                source, target = Path(directory, "a.yaml"), Path(directory, "a.json")
                source.write_text(text)
                result = subprocess.run([sys.executable, SOURCE / "tools" / "yaml-to-json", source, target],
                                        stderr=subprocess.PIPE, text=True)
                self.assertEqual(result.returncode, 1)
                self.assertIn(str(source), result.stderr)
                self.assertNotIn("Traceback", result.stderr)
                self.assertFalse(target.exists())


class ThePage(unittest.TestCase):
    def test_its_policy_allows_its_own_script_and_style(self):
        page = (PAGES / "index.html").read_text()
        policy = re.search(r'Content-Security-Policy"\s+content="([^"]+)"', page)[1]
        for kind in "script", "style":
            own, = re.findall(f"<{kind}>(.*?)</{kind}>", page, re.S)
            digest = base64.b64encode(hashlib.sha256(own.encode()).digest()).decode()
            self.assertIn(f"{kind}-src 'self' 'sha256-{digest}'", policy)

    def test_the_files_of_others_are_as_they_were_taken(self):
        directory = PAGES / "swagger-ui"
        sums = dict(reversed(line.split("  ")) for line in (directory / "SHA256SUMS").read_text().splitlines())
        self.assertEqual({name: hashlib.sha256((directory / name).read_bytes()).hexdigest() for name in sums},
                         sums)
        self.assertEqual({path.name for path in directory.iterdir()}, {*sums, "SHA256SUMS", "README.md"})


if __name__ == "__main__":
    unittest.main()
