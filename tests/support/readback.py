"""Reads an exported workbook and CSV file (the arguments) back with the readers an accountant's
tools use (openpyxl, the csv module) against the grid's cells, given as JSON on stdin:
{"rows": [[text, ...], ...], "kinds": [kind of each column]}. Every cell must read as the grid
shows it; a workbook cell of its column's kind (n number, d date, s text; headings and empty
cells text); the CSV file a text copy with its BOM (dates as yyyy-mm-dd, a text that looks like a
formula behind an apostrophe). Ends with the first difference, or says nothing."""
import csv
import datetime
import json
import sys

import openpyxl

grid = json.load(sys.stdin)
raw = open(sys.argv[2], "rb").read()
text = list(csv.reader(raw.decode("utf-8-sig").splitlines()))
book = list(openpyxl.load_workbook(sys.argv[1]).active.iter_rows(values_only=True))
rows = grid["rows"]
if not raw.startswith(b"\xef\xbb\xbf") or len(book) != len(rows) or len(text) != len(rows):
    sys.exit("%d and %d rows read back for %d; BOM %s" % (len(book), len(text), len(rows), raw.startswith(b"\xef\xbb\xbf")))
for r, row in enumerate(rows):
    for c, shown in enumerate(row):
        kind = "s" if r == 0 or shown == "" else grid["kinds"][c]
        cell, in_csv = book[r][c], text[r][c]
        if kind == "n":
            same = type(cell) in (int, float) and cell == float(shown) and in_csv == shown
        elif kind == "d":
            same = isinstance(cell, datetime.datetime) and list(map(int, shown.split("/"))) == [cell.month, cell.day, cell.year] \
                and in_csv == cell.date().isoformat()
        else:
            same = isinstance(cell, (str, type(None))) and (cell or "") == shown \
                and in_csv == ("'" + shown if shown and shown[0] in "=+-@" else shown)
        if not same:
            sys.exit("row %d column %d shows %r; the workbook holds %r, the CSV file %r" % (r, c, shown, cell, in_csv))
