"""Writing or checking a generated table source, shared by the table generators.

Each generator builds the whole text of its file, then hands it to emit()
with the name and version of the source it read. The text's first line that
starts with SOURCE_MARK records that source (source_line() writes it).
Without --check the text is written to the output path. With --check the
committed file is compared with a fresh generation and the difference, if
any, is printed (exit status 1), but only when the committed file was made
from the same source version as the one installed here: another version may
differ for reasons of its own, so the check is then skipped with a message
naming both. A skip (source missing, or another version) exits with status
77, which the test runner reports as skipped.
"""
import argparse
import difflib
import os
import subprocess
import sys

REPO_ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SKIP_STATUS = 77
SOURCE_MARK = "// Source version: "


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


def debian_package_version(package):
    """The installed version of a Debian package, or "not installed"."""
    try:
        out = subprocess.run(["dpkg-query", "-W", "-f=${Version}", package],
                             capture_output=True, text=True, check=True).stdout
        return out.strip() or "not installed"
    except (OSError, subprocess.CalledProcessError):
        return "not installed"


def source_line(source, version):
    return f"{SOURCE_MARK}{source} {version}"


def recorded_source(text):
    for line in text.splitlines():
        if line.startswith(SOURCE_MARK):
            return line[len(SOURCE_MARK):]
    return None


def emit(args, text, source, version):
    if not args.check:
        with open(args.output, "w", encoding="utf-8", newline="\n") as out:
            out.write(text)
        return
    try:
        with open(args.output, encoding="utf-8") as committed:
            old = committed.read()
    except FileNotFoundError:
        old = ""
    path = os.path.relpath(args.output, REPO_ROOT)
    recorded, installed = recorded_source(old), f"{source} {version}"
    if recorded is not None and recorded != installed:
        skip(f"{path} was generated from {recorded}, this machine has {installed}: not compared")
    if old == text:
        print(f"{path} is up to date ({installed})")
        return
    sys.stdout.writelines(difflib.unified_diff(
        old.splitlines(True), text.splitlines(True), "committed", "generated"))
    sys.exit(1)
