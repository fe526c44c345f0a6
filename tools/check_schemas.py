#!/usr/bin/env python3
"""Checks documents of the console against the schemas in docs/json.

usage: tools/check_schemas.py DOCUMENTS

DOCUMENTS is the file that the test program mira_api_tests writes, results/documents.jsonl: a line for each
command line that it ran on each simulated machine. A document may have no field that its schema does not
name, although readers of documents must allow for more: what a schema forgets is found here.
"""
import concurrent.futures
import json
import os
import pathlib
import sys

import jsonschema

FOLDER = pathlib.Path(__file__).resolve().parent.parent / "docs" / "json"


def expand(schema, schemas, top, part_of_all=False):
    """A copy without references in which objects take no field that is not named."""
    if isinstance(schema, list):
        return [expand(s, schemas, top) for s in schema]
    if not isinstance(schema, dict):
        return schema
    if "$ref" in schema:
        file, _, place = schema["$ref"].partition("#")
        target_top = schemas[file.removesuffix(".schema.json")] if file else top
        target = target_top
        for word in filter(None, place.split("/")):
            target = target[word]
        rest = {k: v for k, v in schema.items() if k != "$ref"}
        expanded = expand(target, schemas, target_top, part_of_all)
        return {"allOf": [expanded, expand(rest, schemas, top, True)]} if rest else expanded
    result = {}
    for key, value in schema.items():
        if key in ("properties", "$defs"):
            result[key] = {k: expand(v, schemas, top) for k, v in value.items() if key == "properties"}
        elif key in ("allOf", "if", "then", "else"):
            parts = value if key == "allOf" else [value]
            parts = [expand(p, schemas, top, True) for p in parts]
            result[key] = parts if key == "allOf" else parts[0]
        else:
            result[key] = expand(value, schemas, top) if key in ("items", "prefixItems", "oneOf", "anyOf") else value
    named = "properties" in schema or "allOf" in schema
    if named and not part_of_all and "additionalProperties" not in schema:
        result["unevaluatedProperties"] = False
    return result


def load_schemas():
    return {p.name.removesuffix(".schema.json"): json.loads(p.read_text()) for p in sorted(FOLDER.glob("*.schema.json"))}


def problems(name, rows):
    """What is wrong with the documents of one schema. Equal documents are checked once."""
    schemas = load_schemas()
    validator = jsonschema.Draft202012Validator(expand(schemas[name], schemas, schemas[name]))
    found, seen = [], set()
    for line, text in rows:
        if text in seen:
            continue
        seen.add(text)
        found += [f"{line}: {'/'.join(map(str, e.absolute_path))}: {e.message[:300]}"
                  for e in validator.iter_errors(json.loads(text))]
    return found


def main():
    schemas = load_schemas()
    for schema in schemas.values():
        jsonschema.Draft202012Validator.check_schema(schema)
    rows = {}
    for text in pathlib.Path(sys.argv[1]).read_text(encoding="utf-8").splitlines():
        row = json.loads(text)
        rows.setdefault(row["schema"], []).append((row["line"], json.dumps(row["document"])))
    failed = [f"docs/json/{name}.schema.json is missing" for name in rows if name not in schemas]
    failed += [f"docs/json/{name}.schema.json: no document was checked against it"
               for name in schemas if name not in rows and name not in OTHERS]
    with concurrent.futures.ProcessPoolExecutor(os.cpu_count()) as pool:
        # Long lists first, so that none runs alone at the end.
        names = sorted((n for n in rows if n in schemas), key=lambda n: -sum(len(t) for _, t in rows[n]))
        for found in pool.map(problems, names, [rows[n] for n in names]):
            failed += found
    for problem in failed:
        print(problem)
    print(f"{sum(map(len, rows.values()))} documents of {len(rows)} schemas checked, {len(failed)} problems")
    return 1 if failed else 0


# Schemas of what is no command's document.
OTHERS = {"common", "profile", "state"}

if __name__ == "__main__":
    sys.exit(main())
