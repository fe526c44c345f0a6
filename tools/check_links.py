#!/usr/bin/env python3
"""Fails when a document in FOLDER names what the folder does not have.

usage: check_links.py FOLDER

Links must lead to files that are there, and nothing may ask for the repository's own tools.
"""
import pathlib
import re
import sys

FOREIGN = [r"\./dev\b", r"\bctest\b", r"`tests/", r"`tools/", r"`src/", r"CONTRIBUTING"]


def main():
    folder = pathlib.Path(sys.argv[1])
    problems = []
    documents = [p for p in folder.rglob("*.md") if p.is_file()]
    if not documents:
        sys.exit(f"{folder} has no documents")
    for document in documents:
        # A lambda in a code block looks like a link.
        text = re.sub(r"^```.*?^```", "", document.read_text(encoding="utf-8"), flags=re.MULTILINE | re.DOTALL)
        text = re.sub(r"^    .*$", "", text, flags=re.MULTILINE)
        name = document.relative_to(folder)
        for target in re.findall(r"\]\(([^)#]+)(?:#[^)]*)?\)", text):
            if not target.startswith(("http:", "https:")) and not (document.parent / target).exists():
                problems.append(f"{name}: {target} is not there")
        if name.name == "CHANGELOG.md":
            continue
        for number, line in enumerate(text.splitlines(), 1):
            for pattern in FOREIGN:
                if re.search(pattern, line):
                    problems.append(f"{name}:{number}: only the repository has this: {line.strip()}")
    print("\n".join(problems))
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
