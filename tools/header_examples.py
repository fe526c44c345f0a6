#!/usr/bin/env python3
"""Makes one source of the examples in the opening comments of headers.

usage: header_examples.py OUTPUT CONTEXT ROOT... -- HEADER...

Each HEADER is included as it is named and found below one of the ROOTs. Its example is what the
opening comment indents by two blanks more than its text. CONTEXT is a header that declares what the
examples take for granted. "..." stands for statements that the reader would write.
"""
import pathlib
import re
import sys


def example(path):
    """The lines of a header's example, with their numbers."""
    lines = []
    in_comment = False
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if line.startswith("//"):
            in_comment = True
            if found := re.match(r"//   (.*)", line):
                lines.append((number, found.group(1)))
        elif in_comment:
            break
    return lines


def statement(line):
    return re.sub(r"(?<![\w,(])\.\.\.", "{}", line)


def main():
    output, context, *rest = sys.argv[1:]
    split = rest.index("--")
    roots = [pathlib.Path(root) for root in rest[:split]]
    headers = rest[split + 1 :]
    found = {}
    for header in headers:
        path = next((root / header for root in roots if (root / header).exists()), None)
        if path is None:
            sys.exit(f"{header} is in none of the folders {', '.join(map(str, roots))}")
        found[header] = path
    source = ["// Made by tools/header_examples.py."]
    source += [f'#include "{header}"' for header in found]
    source += [f'#include "{context}"', "", "namespace host {"]
    for header, path in found.items():
        lines = example(path)
        if not lines:
            continue
        name = re.sub(r"\W", "_", header)
        source += ["", f"Anything Example_{name}(CMiraIntf& mira) {{", "  {"]
        for number, line in lines:
            source += [f'#line {number} "{path.as_posix()}"', statement(line)]
        source += ["  }", "  return {};", "}"]
    source += ["", "}  // namespace host", ""]
    pathlib.Path(output).write_text("\n".join(source), encoding="utf-8")


if __name__ == "__main__":
    main()
