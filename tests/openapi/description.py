# SPDX-License-Identifier: GPL-3.0-or-later
"""An OpenAPI description as what answers are held against."""
import json
import unittest

try:
    import jsonschema
except ImportError as error:
    raise unittest.SkipTest(f"python3-jsonschema is not installed: {error}") from error


class Description:
    def __init__(self, document):
        self.document = document

    def resolved(self, node):
        """NODE with what it refers to in its place, all the way down."""
        if isinstance(node, list):
            return [self.resolved(item) for item in node]
        if not isinstance(node, dict):
            return node
        if "$ref" in node:
            return self.resolved(self.at(node["$ref"]))
        return {key: self.resolved(value) for key, value in node.items()}

    def at(self, reference):
        node = self.document
        for name in reference.removeprefix("#/").split("/"):
            node = node[name]
        return node

    def operations(self):
        """Each method with its path, as ("GET", "/v1/profiles"), and what is said of it."""
        return {(method.upper(), path): self.resolved(operation)
                for path, item in self.document["paths"].items() for method, operation in item.items()}

    def check(self, name, value):
        """Holds VALUE against the schema of that name."""
        self.check_schema(self.resolved(self.document["components"]["schemas"][name]), value)

    @staticmethod
    def check_schema(schema, value):
        # Schemas of OpenAPI 3.0 are of this draft, as far as they are used here.
        try:
            jsonschema.Draft4Validator(schema).validate(value)
        except jsonschema.ValidationError as error:
            raise AssertionError(f"{error.message} at {list(error.absolute_path)}") from error

    def check_answer(self, method, path, status, headers, body):
        """Holds an answer against what is said of its status; returns what its body says."""
        responses = self.operations()[method, path]["responses"]
        where = f"{method} {path}: {status}"
        if str(status) not in responses:
            raise AssertionError(f"{where} is not described")
        response = responses[str(status)]
        for name, header in response["headers"].items():
            values = headers.get_all(name, [])
            if len(values) != 1:
                raise AssertionError(f"{where}: {name} stands {len(values)} times")
            self.check_schema(header["schema"], values[0])
        (kind, media), = response["content"].items()
        kinds = headers.get_all("Content-Type", [])
        if [value.partition(";")[0] for value in kinds] != [kind]:
            raise AssertionError(f"{where}: Content-Type is {kinds}, not {kind}")
        value = json.loads(body) if kind == "application/json" else body.decode()
        self.check_schema(media["schema"], value)
        return value
