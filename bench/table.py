#!/usr/bin/env python3
"""table.py ROWS OUT: prints the benchmark rows (one JSON object a line) as a table and writes them as a JSON list."""
import json
import sys

rows_path, out_path = sys.argv[1:3]
with open(rows_path) as lines:
    rows = [json.loads(line) for line in lines if line.startswith("{")]
with open(out_path, "w") as out:
    json.dump(rows, out, indent=2)
    out.write("\n")
print(f"{'figure':<62} {'value':>10} {'baseline':>10} {'unit':<10} {'ratio':>7}  limit")
for row in rows:
    lower = row["better"] == "lower"
    reached = row["ratio"] <= row["limit"] if lower else row["ratio"] >= row["limit"]
    print(f"{row['name']:<62} {row['value']:>10.4g} {row['baseline']:>10.4g} {row['unit']:<10} {row['ratio']:>7.3f}  "
          f"{'<=' if lower else '>='} {row['limit']:g}{'' if reached else '  NOT REACHED'}")
