"""Writing or checking a generated table source, shared by the table generators.

Each generator builds the whole text of its file, then hands it to emit():
without --check the text is written to the output path; with --check the
committed file is compared with a fresh generation and the difference, if any,
is printed (exit status 1). A generator whose source data is missing exits
with status 77, which the test runner reports as skipped.
"""
import argparse
import difflib
import os
import sys

REPO_ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SKIP_STATUS = 77


def parse_args(description, default_output):
    parser = argparse.ArgumentParser(description=description)
    parser.add_argument("--check", action="store_true",
                        help="compare the committed file with a fresh generation")
    parser.add_argument("--output", default=os.path.join(REPO_ROOT, default_output),
                        help="path of the generated file (default: %(default)s)")
    return parser.parse_args()


def skip(message):
    print(message, file=sys.stderr)
    sys.exit(SKIP_STATUS)


def emit(args, text):
    if not args.check:
        with open(args.output, "w", encoding="utf-8", newline="\n") as out:
            out.write(text)
        return
    try:
        with open(args.output, encoding="utf-8") as committed:
            old = committed.read()
    except FileNotFoundError:
        old = ""
    if old == text:
        print(f"{os.path.relpath(args.output, REPO_ROOT)} is up to date")
        return
    sys.stdout.writelines(difflib.unified_diff(
        old.splitlines(True), text.splitlines(True), "committed", "generated"))
    sys.exit(1)
