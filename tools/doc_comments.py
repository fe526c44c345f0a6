#!/usr/bin/env python3
"""Turns a header's comments into the kind that Doxygen reads; its filter for docs/Doxyfile.

usage: doc_comments.py HEADER

Comments above a declaration belong to it, and those behind a member to the member. The opening
comment describes the file; its indented lines are its example.
"""
import re
import sys


def escaped(text):
    return re.sub(r"([\\\\@<>#&])", r"\\\1", text)


def main():
    lines = open(sys.argv[1], encoding="utf-8").read().splitlines()
    out = []
    seen_code = False
    in_opening = False
    for line in lines:
        comment = re.match(r"^(\s*)//(?: (.*))?$", line)
        if comment and not seen_code and not line.startswith("#"):
            text = escaped(comment.group(2) or "")
            if not in_opening:
                out.append("/// @file")
                in_opening = True
            out.append("///" + (f" {text}" if text else ""))
            continue
        if in_opening:
            in_opening, seen_code = False, True
        if line.startswith("#include") or re.match(r"^(class|struct|namespace|enum)\b", line):
            seen_code = True
        if comment:
            out.append(f"{comment.group(1)}/// {escaped(comment.group(2) or '')}".rstrip())
        else:
            out.append(re.sub(r"(;|,|\})(\s+)// (.*)$", lambda m: f"{m.group(1)}{m.group(2)}///< {escaped(m.group(3))}", line))
    print("\n".join(out))


if __name__ == "__main__":
    main()
