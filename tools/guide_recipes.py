#!/usr/bin/env python3
"""Makes one source of the recipes in a guide, for the test that runs them.

usage: guide_recipes.py OUTPUT GUIDE

A recipe is a fenced block of C++ below a heading of the third level: its includes, then the body of
a function. The fenced block of text below it is what the body prints; it may be missing for a
recipe that prints nothing.
"""
import pathlib
import re
import sys


def main():
    output, guide = sys.argv[1:]
    text = pathlib.Path(guide).read_text(encoding="utf-8")
    recipes = []
    includes = []
    for section in re.split(r"^### ", text, flags=re.MULTILINE)[1:]:
        title = section.split("\n", 1)[0]
        code = re.search(r"^```cpp\n(.*?)^```", section, re.MULTILINE | re.DOTALL)
        if not code:
            continue
        printed = re.search(r"^```text\n(.*?)^```", section, re.MULTILINE | re.DOTALL)
        body = []
        for line in code.group(1).splitlines():
            (includes if line.startswith("#include") else body).append(line)
        recipes.append((title, "\n".join(body), printed.group(1) if printed else ""))
    if not recipes:
        sys.exit(f"{guide} has no recipes")
    lines = ["// Made by tools/guide_recipes.py.", *sorted(set(includes))]
    lines += ['#include "tests/support/recipes.h"', "", "namespace mira::test {", "namespace {", ""]
    for number, (_, body, _) in enumerate(recipes):
        lines += [f"void Recipe{number}() {{", body, "}", ""]
    lines += ["constexpr Recipe kRecipes[] = {"]
    for number, (title, _, printed) in enumerate(recipes):
        lines += [f'{{R"({title})", Recipe{number}, R"({printed})"}},']
    lines += ["};", "", "}  // namespace", ""]
    lines += ["std::span<const Recipe> Recipes() { return kRecipes; }", "", "}  // namespace mira::test", ""]
    pathlib.Path(output).write_text("\n".join(lines), encoding="utf-8")


if __name__ == "__main__":
    main()
