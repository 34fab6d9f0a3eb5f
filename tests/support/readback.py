"""Reads an exported workbook and CSV file back with the readers an accountant's tools use
(openpyxl, the csv module) and prints their cells as JSON: {"workbook": rows, "csv": rows,
"bom": bool}, a workbook cell as [kind, value] (n number, d date as yyyy-mm-dd, s text)."""
import csv
import datetime
import json
import sys

import openpyxl


def kind(value):
    if value is None:
        return ["s", ""]
    if isinstance(value, datetime.datetime):
        return ["d", value.date().isoformat()]
    if isinstance(value, (int, float)):
        return ["n", repr(float(value))]
    return ["s", value]


sheet = openpyxl.load_workbook(sys.argv[1]).active
workbook = [[kind(cell) for cell in row] for row in sheet.iter_rows(values_only=True)]
raw = open(sys.argv[2], "rb").read()
rows = list(csv.reader(raw.decode("utf-8-sig").splitlines()))
print(json.dumps({"workbook": workbook, "csv": rows, "bom": raw.startswith(b"\xef\xbb\xbf")}))
