# What the tests of other programs share. A test whose programs are missing is skipped, with status 77, or fails if the
# environment has KINDEX_REQUIRE_LATEX.
import os
import re
import shutil
import subprocess
import sys


def skip(missing):
    print(f"skipped: no {missing}")
    sys.exit(1 if "KINDEX_REQUIRE_LATEX" in os.environ else 77)


def need(*programs):
    for program in programs:
        if not shutil.which(program):
            skip(program)


# Returns what a command prints. It has to succeed, or else to fail.
def run(*command, fails=False):
    need(command[0])
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")
    failed = done.returncode != 0
    missing = re.search(r"File `(?!kindex)([^']*)' not found" if failed else r"module '(luaotfload.*?)'", done.stdout)
    if missing:
        skip(missing[1])
    if failed != fails:
        sys.exit(f"{' '.join(map(str, command))} {'failed' if failed else 'succeeded'}:\n{errors(done.stdout)}")
    return done.stdout


# The first errors in what TeX printed, each to the line where it stands, or else the end.
def errors(output):
    found = re.findall(r"^(?:! |\S.*:\d+: )(?s:.*?)(?:\nl\.\d.*|\n\n)", output, re.MULTILINE)
    return "\n".join(found[:3] or output.splitlines()[-20:])
