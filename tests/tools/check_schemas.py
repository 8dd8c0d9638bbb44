#!/usr/bin/env python3
"""Checks that documents are what `vell schema` says, and that what `vell check` writes is SARIF.

Call: check_schemas.py VELL SOURCE_DIR
"""

import copy
import json
import pathlib
import re
import subprocess
import sys
import tempfile

from jsonschema import Draft202012Validator

# A member of the sample by its path, and a value with which the document is wrong. `...` leaves the
# member out.
MISTAKES = [
    (["head"], ...),
    (["head"], []),
    (["head", "version"], ...),
    (["head", "version"], "3"),
    (["head", "machineType"], "hero"),
    (["head", "memory"], "1000"),
    (["head", "memory"], 4294967296),
    (["head", "memory"], 0),
    (["head", "memory"], -1),
    (["head", "guid"], "g" * 70),
    (["head", "enterNode"], -1),
    (["head", "enterNode"], 0),
    (["head", "substateRoot"], 0),
    (["head", "Memory"], 1),
    (["layers"], ...),
    (["layers"], {}),
    (["layers"], []),
    (["layers", 0, "nodes"], ...),
    (["layers", 0, "nodes"], {}),
    (["parameters"], ...),
    (["parameters", 0, "name"], ...),
    (["parameters", 0, "parameterType"], "Float"),
    (["parameters", 0, "parameterType"], ...),
    (["parameters", 0, "assign"], "stickLeft"),
    (["parameters", 0, "default"], "zero"),
    (["parameters", 0, "resetEachFrame"], 1),
    (["STATE", "builder"], "state"),
    (["STATE", "builder"], ...),
    (["STATE", "id"], "10"),
    (["STATE", "id"], 0),
    (["STATE", "target"], 10),
    (["STATE", "children"], 100),
    (["STATE", "children"], ["100"]),
    (["STATE", "childs"], []),
    (["STATE", "attributes"], [{"name": "a", "ATTRIB_Data": {"attributeType": "int", "value": 1}}]),
    (["STATE", "attributes"], [{"name": "a", "ATTRIB_Data": [{"attributeType": "i", "value": 1}]}]),
    (["STATE", "attributes"], [{"name": "a", "ATTRIB_Data": [{"attributeType": "int", "value": ""}]}]),
    (["STATE", "attributes"],
     [{"name": "a", "ATTRIB_Data": [{"attributeType": "QVector3D", "value": "1, 2"}]}]),
    (["TRANSITION", "target"], ...),
    (["TRANSITION", "target"], "20"),
    (["TRANSITION", "target"], 0),
    (["TRANSITION", "priority"], "1"),
    (["TRANSITION", "priority"], 1.5),
    (["TRANSITION", "disabled"], "true"),
    (["TRANSITION", "switchArgument"], "0.25"),
    (["CONDITION", "conditionType"], "float2"),
    (["CONDITION", "conditionType"], ...),
    (["CONDITION", "operator"], "lessThan"),
    (["CONDITION", "parameter"], "speed"),
    (["CONDITION", "parameter"], 0),
    (["CONDITION", "operand"], {"value": 1}),
    (["CONDITION", "operand"], []),
    (["CONDITION", "operand"], [{}]),
]

# The same, of what the check reports as ids, references and types.
MISTAKES_OF_MEANING = [
    (["STATE", "id"], ...),
    (["STATE", "children"], [0]),
    (["TRANSITION", "conditions"], ...),
    (["CONDITION", "operand"], [{"value": "1"}]),
]

# As good as the sample.
VARIANTS = [
    (["$schema"], "machine.schema.json"),
    (["head", "$comment"], "a remark"),
    (["head", "$allow"], ["VELL020"]),
    (["STATE", "builder"], "1000"),
    (["STATE", "attributes"],
     [{"name": "a", "ATTRIB_Data": [{"attributeType": "qvector2d", "value": "1e3,-.5"}]}]),
    (["STATE", "attributes"], [{"name": "a", "ATTRIB_Data": [{"attributeType": "QString", "value": ""}]}]),
]


# In samples/character.hsm.json.
SOURCE_MISTAKES = [
    (["memroy"], 5),
    (["type"], "charakter"),
    (["parameters", "armed"], "yes"),
    (["parameters", "stick"], {"float2": [1]}),
    (["parameters", "stick"], {"input": "leftStick"}),
    (["parameters", "stick"], {"float2": [0, 0], "input": "stickLeft"}),
    (["states", "Combat"], 5),
    (["states", "Combat", "loop"], True),
    (["states", "Combat", "id"], -1),
    (["states", "Combat", "go"], {"to": "Locomotion", "when": "armed"}),
    (["states", "Combat", "go", 0], {"when": "armed"}),
    (["states", "Combat", "go", 0], {"to": "Locomotion"}),
    (["states", "Combat", "go", 0, "when"], 5),
    (["states", "Combat", "go", 0, "priority"], 1.5),
    (["states", "Combat", "states", "Guard", "attributes"], {"a": [1]}),
    (["states", "Combat", "states", "Guard", "clip"], 5),
    (["interrupts", 0, "when"], [{"name": "x"}]),
]


def find_target(document, path):
    """Gives the object or array that the last step of a path is in."""
    place = document
    nodes = [node for layer in document["layers"] for node in layer["nodes"]]
    transitions = [node for node in nodes if node["builder"] == "transition"]
    conditions = [condition for node in transitions for condition in node["conditions"]]
    starts = {
        "STATE": next(node for node in nodes if node["builder"] == "generic"),
        "TRANSITION": transitions[0],
        "CONDITION": next(c for c in conditions if c["conditionType"] in ("float", "integer")),
    }
    for step in path[:-1]:
        place = starts[step] if step in starts else place[step]
    return place


def changed(document, path, value):
    document = copy.deepcopy(document)
    place = find_target(document, path)
    if value is ...:
        del place[path[-1]]
    else:
        place[path[-1]] = value
    return document


def read_documents(root):
    """Gives the samples, and the example of the page about documents."""
    documents = {path.name: json.loads(path.read_text()) for path in root.glob("samples/*.json")
                 if not path.name.endswith(".hsm.json")}
    page = (root / "docs/document-format.md").read_text()
    example = re.search(r"## A complete example.*?```json\n(.*?)```", page, re.DOTALL)
    documents["document-format.md"] = json.loads(example[1])
    return documents


def without_comments(text):
    """Gives a source as plain JSON."""
    piece = re.compile(r'("(?:[^"\\\\]|\\\\.)*")|//[^\n]*|/\\*.*?\\*/|,(?=\s*[}\]])', re.DOTALL)
    return piece.sub(lambda match: match[1] or "", text)


def check_sources(validator, root, expect):
    """Holds the sources to their schema, and the schema to some mistakes."""
    sources = {path.name: json.loads(without_comments(path.read_text()))
               for folder in ("samples", "tests/data") for path in root.glob(f"{folder}/*.hsm.json")}
    expect(len(sources) >= 3, "found too few sources")
    for name, source in sources.items():
        for error in validator.iter_errors(source):
            expect(False, f"{name}: {error.json_path}: {error.message}")
    for path, value in SOURCE_MISTAKES:
        source = copy.deepcopy(sources["character.hsm.json"])
        place = source
        for step in path[:-1]:
            place = place[step]
        place[path[-1]] = value
        expect(not validator.is_valid(source), f"valid by the schema of sources: {path} {value}")
    return len(sources)


def main():
    vell, root = sys.argv[1], pathlib.Path(sys.argv[2])
    faults = []

    def expect(is_true, message):
        if not is_true:
            faults.append(message)

    def call(*words, text=None):
        return subprocess.run([vell, *words], input=text, capture_output=True, text=True, check=False)

    schema = json.loads(call("schema").stdout)
    Draft202012Validator.check_schema(schema)
    validator = Draft202012Validator(schema)
    documents = read_documents(root)
    expect(len(documents) >= 3, "found too few documents")
    for name, document in documents.items():
        for error in validator.iter_errors(document):
            faults.append(f"{name}: {error.json_path}: {error.message}")
    sample = documents["document-format.md"]
    for path, value in VARIANTS:
        expect(validator.is_valid(changed(sample, path, value)), f"refused: {path} {value}")

    for path, value in MISTAKES + MISTAKES_OF_MEANING:
        is_valid = validator.is_valid(changed(sample, path, value))
        expect(not is_valid, f"valid by the schema: {path} {value}")

    source_schema = json.loads(call("schema", "--source").stdout)
    Draft202012Validator.check_schema(source_schema)
    sources = check_sources(Draft202012Validator(source_schema), root, expect)

    sarif = json.loads((root / "tests/tools/sarif-subset.schema.json").read_text())
    sarif_validator = Draft202012Validator(sarif)
    with tempfile.TemporaryDirectory() as folder:
        for number, (path, value) in enumerate(MISTAKES):
            document = changed(sample, path, value)
            (pathlib.Path(folder) / f"a mistake {number}.json").write_text(json.dumps(document))
            outcome = call("check", "--strict", "-", text=json.dumps(document))
            expect(outcome.returncode == 1, f"not found by the check: {path} {value}")
        log = json.loads(call("check", "--format", "sarif", folder).stdout)
        for error in sarif_validator.iter_errors(log):
            faults.append(f"SARIF: {error.json_path}: {error.message}")
        results = log["runs"][0]["results"]
        rules = log["runs"][0]["tool"]["driver"]["rules"]
        expect(len(results) >= len(MISTAKES), "too few results")
        for result in results:
            expect(rules[result["ruleIndex"]]["id"] == result["ruleId"], "a wrong index of a rule")
        plain = json.loads(call("check", "--format", "json", folder).stdout)
        expect(len(plain["documents"]) == len(MISTAKES), "too few documents")
        expect(plain["errors"] + plain["warnings"] + plain["notes"] == len(results), "wrong counts")
    print("\n".join(faults) if faults else f"{len(documents)} documents, {sources} sources, {len(MISTAKES)} mistakes")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
