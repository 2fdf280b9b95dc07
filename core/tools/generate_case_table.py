#!/usr/bin/env python3
"""Writes case_table.cpp, the simple case mappings of Unicode, from the files of Debian's package unicode-data.

    core/tools/generate_case_table.py [/usr/share/unicode] > core/tools/case_table.cpp
"""
import re
import sys
from pathlib import Path

UPPER_FIELD, LOWER_FIELD = 12, 13  # of UnicodeData.txt (Unicode Standard Annex #44)


def mappings(lines, field):
    """Yields (code point, its distance to the counterpart) in ascending order."""
    for line in lines:
        fields = line.split(";")
        if fields[field]:
            source, target = int(fields[0], 16), int(fields[field], 16)
            # Strings are mapped where they lie: no mapping changes the number of units.
            assert (source > 0xFFFF) == (target > 0xFFFF), line
            yield source, target - source


def runs(pairs):
    """Joins pairs of equal distance whose code points follow each other one by one, or two by two."""
    run = None
    for source, distance in pairs:
        if run and distance == run["distance"]:
            step = source - run["last"]
            if step in (1, 2) and run["step"] in (0, step):
                run.update(last=source, step=step)
                continue
        if run:
            yield run
        run = {"first": source, "last": source, "step": 0, "distance": distance}
    yield run


def table(name, lines, field):
    rows = [f"{{0x{r['first']:X}, 0x{r['last']:X}, {max(r['step'], 1)}, {r['distance']}}}"
            for r in runs(mappings(lines, field))]
    body = "".join(f"    {', '.join(rows[i:i + 3])},\n" for i in range(0, len(rows), 3))
    return f"constexpr ze::CaseRun {name}[] = {{\n    // clang-format off\n{body}    // clang-format on\n}};\n"


folder = Path(sys.argv[1] if len(sys.argv) > 1 else "/usr/share/unicode")
lines = (folder / "UnicodeData.txt").read_text().splitlines()
version = re.search(r"DerivedAge-([\d.]+)\.txt", (folder / "DerivedAge.txt").read_text()).group(1)
print(f"""// Made by generate_case_table.py from Unicode {version}. Change that, not this.

#include "core/tools/case_table.h"

namespace {{

{table("kToLower", lines, LOWER_FIELD)}
{table("kToUpper", lines, UPPER_FIELD)}
}} // namespace

constinit const std::span<const ze::CaseRun> ze::toLowerRuns = kToLower;
constinit const std::span<const ze::CaseRun> ze::toUpperRuns = kToUpper;""")
