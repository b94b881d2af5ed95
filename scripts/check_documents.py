#!/usr/bin/env python3
"""Reports and labels say what they should, in a word processor's eyes: documents of the sample catalogue are written,
shown by LibreOffice, and their texts and bar codes read back from the pages.

    scripts/check_documents.py [--keep FOLDER]     (keeps the documents and their pages)

Prints a line for each fault, and tries itself on bad samples first.
"""

import argparse
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / os.environ.get("QUENTA_BUILD", "build")
WRITER = BUILD / "native/tests/unit/product/write_documents"

TOOLS = {"soffice": "libreoffice-writer-nogui", "pdftotext": "poppler-utils", "pdftoppm": "poppler-utils",
         "zbarimg": "zbar-tools"}


def run(*command, seconds=120, **options):
    return subprocess.run(command, check=True, timeout=seconds, stdin=subprocess.DEVNULL, capture_output=True, **options)


def squeezed(text):
    """Without blanks of any kind: where a program breaks lines does not matter."""
    return re.sub(r"\s+", "", text)


def read_expected(text):
    """What a reader must find, by kind: "text" in this order, "every page", and a "grid" of labels with a "code" each (an
    empty one for a place without a label), page after page."""
    expected = {"text": [], "every page": [], "grid": [], "code": []}
    for line in text.splitlines():
        kind, value = line.split(": ", 1)
        expected[kind].append(value)
    return expected


def faults_in(expected, pages, codes):
    """What is wrong with a document that shows these pages, and these bar codes in the places of its grid."""
    faults = []
    whole = squeezed("".join(pages))
    position = 0
    for text in expected["text"]:
        found = whole.find(squeezed(text), position)
        if found < 0:
            faults.append(f'"{text}" is not shown where it should be')
        else:
            position = found + len(squeezed(text))
    for text in expected["every page"]:
        for number, page in enumerate(pages, 1):
            if squeezed(text) not in squeezed(page):
                faults.append(f'"{text}" is not on page {number}')
    wanted = expected["code"] + [""] * (len(codes) - len(expected["code"]))
    spare = len(codes) - len(expected["code"])
    if spare < 0 or (codes and spare >= len(codes) / max(len(pages), 1)):
        faults.append(f"{len(pages)} pages have {len(codes)} places for {len(expected['code'])} labels")
    for place, (code, found) in enumerate(zip(wanted, codes), 1):
        if code != found:
            faults.append(f'place {place} has the bar code "{found}" instead of "{code}"')
    for text in re.findall(r"<<?[a-z_]+>>?", whole):
        faults.append(f"the placeholder {text} is left")
    return faults


def try_self():
    expected = read_expected("text: Café\ntext: 2,00\nevery page: Ana\ngrid: 1x2\ncode: \ncode: A1\ncode: A1\n")
    good = ["Ca fé\n2,00 Ana", "Ana"]
    assert not faults_in(expected, good, ["", "A1", "A1", ""])
    for pages, codes in [(["2,00 Café Ana", "Ana"], ["", "A1", "A1", ""]), (["Café 2,00", "Ana"], ["", "A1", "A1", ""]),
                         (good, ["A1", "", "A1", ""]), (good, ["", "A1"]), (good + ["Ana"], ["", "A1", "A1"] + [""] * 3),
                         (["Café 2,00 Ana <<preco>>", "Ana"], ["", "A1", "A1", ""])]:
        assert faults_in(expected, pages, codes), (pages, codes)


def build_writer():
    step = ("source scripts/lib.sh && { [[ -f $BUILD/native/build.ninja ]] || configure native; } && "
            "build native write_documents")
    try:
        run("bash", "-c", step, seconds=1500, cwd=ROOT)
    except subprocess.CalledProcessError as error:
        sys.exit((error.stdout + error.stderr).decode(errors="replace")[-3000:])


def show(folder):
    """Every document of the folder as a PDF beside it."""
    documents = sorted(folder.glob("*.doc"))
    # A profile of its own: a user's running office must not answer instead.
    run("soffice", f"-env:UserInstallation=file://{folder}/profile", "--headless", "--convert-to", "pdf", "--outdir",
        str(folder), *map(str, documents), env=dict(os.environ, LC_ALL="C.UTF-8", HOME=str(folder)))
    missing = [document.name for document in documents if not document.with_suffix(".pdf").exists()]
    if missing:
        sys.exit(f"LibreOffice does not open {missing}")


def pages_of(pdf):
    text = run("pdftotext", "-raw", "-enc", "UTF-8", str(pdf), "-").stdout.decode()
    return text.split("\f")[:-1]


def cells_of(image, columns, rows):
    """The places of a page's grid, row by row, each as an image of its own."""
    magic, width, height, _, pixels = re.match(rb"(P5)\s+(\d+)\s+(\d+)\s+(\d+)\s(.*)", image, re.S).groups()
    width, height = int(width), int(height)
    for row in range(rows):
        for column in range(columns):
            left, right = width * column // columns, width * (column + 1) // columns
            lines = [pixels[y * width + left:y * width + right]
                     for y in range(height * row // rows, height * (row + 1) // rows)]
            yield magic + b"\n%d %d\n255\n" % (right - left, len(lines)) + b"".join(lines)


def codes_in(pdf, grid):
    """The bar code in each place of the grid; empty where there is none."""
    columns, rows = map(int, grid.split("x"))
    # 300 dots to the inch: what an office printer of the plainest kind puts on paper.
    run("pdftoppm", "-r", "300", "-gray", str(pdf), str(pdf.with_suffix("")))
    codes = []
    for page in sorted(pdf.parent.glob(pdf.stem + "-*.pgm")):
        for cell in cells_of(page.read_bytes(), columns, rows):
            place = pdf.with_suffix(".cell.pgm")
            place.write_bytes(cell)
            # Ends with status 4 where there is no bar code.
            found = subprocess.run(["zbarimg", "-q", "--raw", "--nodbus", "-Sdisable", "-Scode128.enable", str(place)],
                                   stdin=subprocess.DEVNULL, capture_output=True, timeout=60, check=False)
            codes.append(found.stdout.decode().rstrip("\n"))
    return codes


def check(folder):
    run(str(WRITER), str(folder))
    show(folder)
    faults = 0
    checked = 0
    for file in sorted(folder.glob("*.expected")):
        expected = read_expected(file.read_text(encoding="utf-8"))
        pdf = file.with_suffix(".pdf")
        codes = codes_in(pdf, expected["grid"][0]) if expected["grid"] else []
        for fault in faults_in(expected, pages_of(pdf), codes):
            print(f"{pdf.stem}: {fault}")
            faults += 1
        checked += sum(len(values) for values in expected.values())
    print(f"{len(list(folder.glob('*.expected')))} documents, {checked} expectations, {faults} faults")
    return faults == 0 and checked > 0


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--keep", type=pathlib.Path, help="folder for the documents and their pages")
    arguments = parser.parse_args()
    try_self()
    missing = {package for tool, package in TOOLS.items()
               if subprocess.run(["which", tool], capture_output=True, check=False).returncode != 0}
    if missing:
        sys.exit(f"missing: {' '.join(sorted(missing))} (scripts/bootstrap.sh test installs them)")
    build_writer()
    if arguments.keep:
        arguments.keep.mkdir(parents=True, exist_ok=True)
        return check(arguments.keep.resolve())
    with tempfile.TemporaryDirectory(prefix="quenta-documents-") as folder:
        return check(pathlib.Path(folder))


if __name__ == "__main__":
    sys.exit(0 if main() else 1)
