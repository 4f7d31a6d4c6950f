#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads an exported file with parsers that share nothing with the program and prints its rows as JSON.

usage: read_back.py FORMAT FILE

Cells are texts; of a workbook also numbers and booleans as they are typed, dates as {"date": days since 1899-12-30}.
"""
import csv
import html.parser
import json
import re
import sys
import xml.etree.ElementTree as ET
import zipfile

MAIN = "{http://schemas.openxmlformats.org/spreadsheetml/2006/main}"


class Table(html.parser.HTMLParser):
    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.rows, self.cell = [], None

    def handle_starttag(self, tag, attrs):
        if tag == "tr":
            self.rows.append([])
        elif tag in ("td", "th"):
            self.cell = ""
        elif tag == "img" and self.cell is not None:
            self.cell += "image:" + dict(attrs)["src"].split(";")[0]
        elif tag in ("script", "link", "iframe"):
            raise SystemExit("the page is not self-contained")

    def handle_endtag(self, tag):
        if tag in ("td", "th"):
            self.rows[-1].append(self.cell)
            self.cell = None

    def handle_data(self, data):
        if self.cell is not None:
            self.cell += data


def read_html(path):
    table = Table()
    table.feed(open(path, encoding="utf-8", newline="").read())
    return table.rows


def read_csv(path):
    return list(csv.reader(open(path, encoding="utf-8", newline=""), strict=True))


def read_xml(path):
    def rows(element, groups):
        for child in element:
            if child.tag == "Group":
                yield from rows(child, groups + [child.get("field") + "=" + child.get("value")])
            else:
                yield groups + [field.tag + "=" + (field.text or "") for field in child]
    return list(rows(ET.parse(path).getroot(), []))


def text_of(element):
    # Characters that XML cannot hold are written as _x0001_ (ECMA-376 part 1, 22.4.2.4).
    raw = "".join(part.text or "" for part in element.iter(MAIN + "t"))
    return re.sub("_x([0-9A-F]{4})_", lambda match: chr(int(match[1], 16)), raw)


def read_xlsx(path):
    book = zipfile.ZipFile(path)
    if book.testzip():
        raise SystemExit("damaged archive")
    shared = []
    if "xl/sharedStrings.xml" in book.namelist():
        shared = [text_of(item) for item in ET.fromstring(book.read("xl/sharedStrings.xml")).iter(MAIN + "si")]
    styles = ET.fromstring(book.read("xl/styles.xml"))
    codes = {item.get("numFmtId"): item.get("formatCode") for item in styles.iter(MAIN + "numFmt")}
    formats = [codes.get(xf.get("numFmtId"), "") for xf in styles.find(MAIN + "cellXfs")]
    sheet = ET.fromstring(book.read("xl/worksheets/sheet1.xml"))
    pane = sheet.find(f".//{MAIN}pane")
    if pane is None or pane.get("state") != "frozen" or pane.get("ySplit") != "1":
        raise SystemExit("the heading is not frozen")
    rows = []
    for row in sheet.iter(MAIN + "row"):
        cells = []
        for cell in row:
            letters = re.match("[A-Z]+", cell.get("r"))[0]
            column = 0
            for letter in letters:
                column = column * 26 + ord(letter) - 64
            cells += [None] * (column - 1 - len(cells))
            value = cell.find(MAIN + "v")
            kind = cell.get("t", "n")
            if kind == "s":
                cells.append(shared[int(value.text)])
            elif kind == "inlineStr":
                cells.append(text_of(cell))
            elif kind == "b":
                cells.append(value.text == "1")
            elif value is not None:
                number = float(value.text)
                date = "yyyy" in formats[int(cell.get("s", "0"))]
                cells.append({"date": number} if date else number)
        rows.append(cells)
    return rows


READERS = {"html": read_html, "csv": read_csv, "xml": read_xml, "xlsx": read_xlsx}
json.dump(READERS[sys.argv[1]](sys.argv[2]), sys.stdout)
