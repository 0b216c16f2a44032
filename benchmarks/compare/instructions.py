#!/usr/bin/env python3
"""Compares the instruction counts that callgrind left in a folder with the stored ones.

instructions.py FOLDER STORED COMPILER [REASON]: with a reason the counts are stored instead, and the reason with them.
"""
import json
import pathlib
import re
import sys

ALLOWED = 1.05


def counts_in(folder):
    """Counts by the name that the program gave to each dump."""
    counts = {}
    for file in pathlib.Path(folder).glob("callgrind.out.*"):
        text = file.read_text(errors="replace")
        name = re.search(r"^desc: Trigger: Client Request: (.*)$", text, re.M)
        total = re.search(r"^(?:totals|summary): (\d+)", text, re.M)
        if name and total:
            counts[name.group(1)] = int(total.group(1))
    return dict(sorted(counts.items()))


def compare(counts, stored):
    """Prints what changed; whether nothing became dearer than allowed."""
    good = True
    for name in sorted(counts.keys() | stored.keys()):
        now, before = counts.get(name), stored.get(name)
        if now is None or before is None:
            print(f"   {name}: {'no longer counted' if now is None else 'not stored yet'}")
            good = False
        elif now > ALLOWED * before:
            print(f"   {name}: {now} instructions, {before} stored: {100 * (now / before - 1):+.1f} %")
            good = False
        elif now < before / ALLOWED:
            print(f"   {name}: {100 * (now / before - 1):+.1f} %, worth storing")
    return good


def main():
    folder, file, compiler = sys.argv[1:4]
    reason = " ".join(sys.argv[4:])
    counts = counts_in(folder)
    if not counts:
        sys.exit("count-instructions: callgrind has counted nothing")
    if reason:
        stored = {"compiler": compiler, "reason": reason, "instructions": counts}
        pathlib.Path(file).write_text(json.dumps(stored, indent=1) + "\n")
        print(f"   {len(counts)} counts stored in {file}")
        return
    stored = json.loads(pathlib.Path(file).read_text())
    if stored["compiler"] != compiler:
        print(f"   Not compared: this is {compiler}, the stored counts are of {stored['compiler']}")
        return
    if not compare(counts, stored["instructions"]):
        sys.exit("count-instructions: over 5 % more instructions than stored, or other operations. If that is meant: "
                 "scripts/count-instructions --update REASON")
    print(f"   {len(counts)} runs within 5 % of the stored counts")


main()
