#!/usr/bin/env python3
"""Reads the profiles that bench/run collects and prints their numbers.

Usage:
  parse_profiles.py strace-summary FILE
      FILE is an `strace -c` summary.  Prints the total number of system
      calls and the number of write calls: "CALLS WRITES".
  parse_profiles.py strace-writes FILE
      FILE is an strace trace of write calls (-s large enough for whole
      lines).  Prints the writes to stderr, the line feeds they carry and
      the writes that are not exactly one whole line (one line feed, at
      their end): "WRITES LINES NOT_ONE_LINE".
  parse_profiles.py callgrind FILE PROGRAM
      FILE is a callgrind profile of PROGRAM.  Prints the total instruction
      count and the self counts per object kind: "TOTAL OWN LIBSTDCXX LIBC
      LIBCUPS LDSO OTHER".

Every number is printed as a plain integer, 0 when the profile has none.
Only the standard library is used.
"""

import os
import re
import sys

# The kinds of object that callgrind_by_object() tells apart, in the order
# in which they are printed after the total.
KINDS = ("own", "libstdc++", "libc", "libcups", "ld.so", "other")

# The end of one traced write(2, ...): its length and its result.
WRITE_END = re.compile(r'", [0-9]+\) += -?[0-9]+.*$')

# A compressed name in a callgrind profile: "(3) /usr/lib/libc.so.6" defines
# id 3, a later "(3)" refers to it.
COMPRESSED_NAME = re.compile(r"^\(([0-9]+)\) ?(.*)$")


def read_lines(path):
    """Returns the lines of a text file, without their line feeds."""
    with open(path, encoding="utf-8", errors="surrogateescape") as f:
        return f.read().splitlines()


def strace_summary(path):
    """Returns (total calls, write calls) of an `strace -c` summary."""
    total = writes = 0
    for line in read_lines(path):
        fields = line.split()
        if len(fields) < 4:
            continue
        if fields[-1] == "total":
            total = int(fields[3])
        elif fields[-1] == "write":
            writes = int(fields[3])
    return total, writes


def strace_writes(path):
    """Returns (writes to stderr, line feeds in them, writes that are not
    exactly one line) of an strace trace of writes."""
    writes = lines = not_one_line = 0
    for line in read_lines(path):
        start = line.find('write(2, "')
        if start < 0:
            continue
        text = WRITE_END.sub("", line[start + len('write(2, "'):], count=1)
        feeds = text.count("\\n")
        writes += 1
        lines += feeds
        if feeds != 1 or not text.endswith("\\n"):
            not_one_line += 1
    return writes, lines, not_one_line


def object_kind(path, program):
    """Returns which of KINDS the object file at path is."""
    if path.endswith("/" + program):
        return "own"
    if re.search(r"libstdc\+\+|libgcc_s", path):
        return "libstdc++"
    if re.search(r"/libc\.so|/libm\.so", path):
        return "libc"
    if "libcups" in path:
        return "libcups"
    if "/ld-linux" in path:
        return "ld.so"
    return "other"


def callgrind_by_object(path, program):
    """Returns the total instruction count of a callgrind profile and the
    self counts of each of KINDS, in that order."""
    names = {}

    def name_of(ref):
        # Object names are compressed: the first use of an id defines it.
        match = COMPRESSED_NAME.match(ref)
        if not match:
            return ref
        if match.group(2):
            names[match.group(1)] = match.group(2)
        return names.get(match.group(1), "")

    cost = dict.fromkeys(KINDS, 0)
    total = 0
    obj = ""
    after_calls = False
    for line in read_lines(path):
        if line.startswith("ob="):
            obj = name_of(line[3:])
        elif line.startswith("cob="):
            name_of(line[4:])
        elif line.startswith("calls="):
            # The cost line after a call is the callee's inclusive cost.
            after_calls = True
        elif line[:1] and line[0] in "0123456789+*-":
            if after_calls:
                after_calls = False
                continue
            fields = line.split()
            if len(fields) >= 2:
                cost[object_kind(obj, program)] += int(fields[1])
        elif line.startswith(("summary:", "totals:")):
            total = int(line.split()[1])
    return (total,) + tuple(cost[kind] for kind in KINDS)


def main(argv):
    """Runs one parser on the command line's file; returns the exit status."""
    commands = {
        ("strace-summary", 1): lambda a: strace_summary(a[0]),
        ("strace-writes", 1): lambda a: strace_writes(a[0]),
        ("callgrind", 2): lambda a: callgrind_by_object(a[0], os.path.basename(a[1])),
    }
    parser = commands.get((argv[1], len(argv) - 2)) if len(argv) > 1 else None
    if parser is None:
        sys.stderr.write(__doc__)
        return 2
    print(" ".join(str(n) for n in parser(argv[2:])))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
