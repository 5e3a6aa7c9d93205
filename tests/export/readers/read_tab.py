"""Reads a tab-delimited export with Python's csv module (the tab dialect; the format quotes
nothing, so neither does the reader) and prints, as JSON, the header and each row's number
of fields, id and subject."""
import csv
import json
import sys


def main(path):
    # Raw sources of large messages make long fields.
    csv.field_size_limit(sys.maxsize)
    with open(path, newline="", encoding="utf-8") as f:
        rows = list(csv.reader(f, dialect="excel-tab", quoting=csv.QUOTE_NONE))
    json.dump({"header": rows[0],
               "rows": [{"fields": len(r), "id": r[0], "subject": r[4]} for r in rows[1:]]},
              sys.stdout, ensure_ascii=False)


if __name__ == "__main__":
    main(sys.argv[1])
