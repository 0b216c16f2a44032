#!/usr/bin/env python3
"""Every link of a page names a file that is there, and a heading of it: links_test.py SOURCE"""
import os
import re
import sys

LINK = re.compile(r"\]\(([^)\s]+)\)")


def pages_of(source):
    for parent, folders, files in os.walk(source):
        folders[:] = [f for f in folders if not f.startswith((".", "build"))]
        yield from (os.path.join(parent, name) for name in files if name.endswith(".md"))


def without_code(path):
    with open(path, encoding="utf-8") as file:
        text = re.sub(r"^```.*?^```", "", file.read(), flags=re.M | re.S)
    return re.sub(r"`[^`\n]*`", lambda code: re.sub(r"[\[\]()]", "", code.group()), text)


def anchors_of(path):
    """Headings as pages on the web name them: lower case, blanks as hyphens, no signs."""
    headings = re.findall(r"^#+ (.*)$", without_code(path), flags=re.M)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).strip().replace(" ", "-") for heading in headings}


def faults_of(page):
    for target in LINK.findall(without_code(page)):
        if re.match(r"[a-z]+:", target):
            continue
        name, _, anchor = target.partition("#")
        path = os.path.normpath(os.path.join(os.path.dirname(page), name)) if name else page
        if not os.path.exists(path):
            yield f"{page}: no file for {target}"
        elif anchor and anchor not in anchors_of(path):
            yield f"{page}: no heading for {target}"


def main():
    pages = list(pages_of(sys.argv[1]))
    faults = [fault for page in pages for fault in faults_of(page)]
    print("\n".join(faults) or f"{len(pages)} pages")
    sys.exit(bool(faults) or len(pages) < 2)


if __name__ == "__main__":
    main()
