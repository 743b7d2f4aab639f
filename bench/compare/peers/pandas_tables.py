"""pandas as a peer in work on whole tables: cross tables, unions, CSV. Says how long each took.

Takes requests as lines of JSON on standard input and answers each with a line of JSON:

    {"do": "open-numbers", "path": FILE, "rows": 1000}  three columns of doubles one behind the other, NaN for a null
    {"do": "open-sales", "path": FILE}                  a CSV file of sales, added to those read before
    {"do": "pivot", "cpu": false}                       -> {"seconds": 1.5, "sum": 3.5}
    {"do": "union", "cpu": false, "check": true}        -> {"seconds": 1.5, "sums": {...}}
    {"do": "csv", "path": FILE, "cpu": false}           -> {"seconds": 1.5}, with a file written
"""

import json
import sys
import time

import numpy
import pandas

SWAPPED = str.maketrans(",.", ".,")
MODULUS = 16381
numbers = None
sales = []


def open_numbers(request):
    global numbers
    values = numpy.fromfile(request["path"], dtype=numpy.float64).reshape(3, request["rows"])
    numbers = pandas.DataFrame(
        {"key": values[0].astype("int32"), "heading": values[1].astype("int32"), "amount": values[2]}
    )
    return {}


def open_sales(request):
    kinds = {"number": "int32", "rating": "Int32", "amount": "float64", "code": "object", "description": "object"}
    frame = pandas.read_csv(request["path"], dtype=kinds)
    frame["day"] = pandas.to_datetime(frame["day"], unit="s")
    sales.append(frame)
    return {}


def timed(request, work):
    clock = time.process_time if request["cpu"] else time.perf_counter
    start = clock()
    result = work()
    return clock() - start, result


def cross_table():
    grouped = numbers.groupby(["key", "heading"], sort=False)["amount"].sum(min_count=1)
    return grouped.unstack()


def pivot(request):
    seconds, table = timed(request, cross_table)
    weights = numpy.outer(table.index.to_numpy(), table.columns.to_numpy())
    total = numpy.nansum(table.to_numpy() * weights)
    return {"seconds": seconds, "sum": float(total)}


def sums_of(frame):
    cents = (frame["amount"].dropna() * 100).round().astype("int64") + 50_000_000
    order = (numpy.arange(len(frame)) % MODULUS + 1) * (frame["number"].astype("int64") % MODULUS)
    found = {
        "rows": len(frame),
        "number": frame["number"].sum(),
        "cents": cents.sum(),
        "amount_nulls": frame["amount"].isna().sum(),
        "days": (frame["day"].astype("int64") // 86_400_000_000_000).sum(),
        "code": frame["code"].str[4:].astype("int64").sum(),
        "order": order.sum(),
    }
    return {name: int(value) for name, value in found.items()}


def union(request):
    parts = [frame[["number", "amount", "day", "code"]] for frame in sales]
    seconds, table = timed(request, lambda: pandas.concat(parts, ignore_index=True))
    return {"seconds": seconds, "sums": sums_of(table) if request["check"] else {}}


def amount_text(amount):
    return f"{amount:,.2f}".translate(SWAPPED)


def write_csv(path):
    columns = ["number", "amount", "day", "code", "description", "rating"]
    frame = sales[0][columns].copy(deep=False)
    frame["amount"] = frame["amount"].map(amount_text, na_action="ignore")
    frame["day"] = frame["day"].dt.strftime("%d/%m/%Y")
    frame.to_csv(path, sep=";", header=False, index=False, lineterminator="\n")


def csv(request):
    seconds, _ = timed(request, lambda: write_csv(request["path"]))
    return {"seconds": seconds}


WORK = {"open-numbers": open_numbers, "open-sales": open_sales, "pivot": pivot, "union": union, "csv": csv}

for line in sys.stdin:
    try:
        request = json.loads(line)
        reply = WORK[request["do"]](request)
    except Exception as error:  # whatever it is, the benchmark says so
        reply = {"error": f"{type(error).__name__}: {error}"}
    print(json.dumps(reply), flush=True)
