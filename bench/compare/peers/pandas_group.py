"""Pandas as a peer: groups a table of amounts by its keys, and says how long that took.

Takes requests as lines of JSON on standard input and answers each with a line of JSON:

    {"do": "open", "path": FILE, "keys": ["k"], "texts": false}    a CSV file: the keys, and the amounts "v"
    {"do": "group", "cpu": false, "check": true}  -> {"seconds": 1.5, "sums": {...}}, with the sums where asked for
"""

import json
import sys
import time

import numpy
import pandas

table = None
keys = None
has_texts = False


def open_file(request):
    global table, keys, has_texts
    keys = request["keys"]
    has_texts = request["texts"]
    kinds = {key: "str" if has_texts else "int32" for key in keys}
    table = pandas.read_csv(request["path"], dtype={**kinds, "v": "float64"}, keep_default_na=not has_texts,
                            na_values={"v": [""]})
    return {"rows": len(table)}


def grouped():
    groups = table.groupby(keys[0] if len(keys) == 1 else keys, sort=False)
    amounts = groups["v"]
    return pandas.DataFrame({"s": amounts.sum(min_count=1), "m": amounts.min(), "n": groups.size()})


def sums_of(found):
    flat = found.reset_index()
    if has_texts:
        key = flat["k"].str[4:].astype("int64")
    elif len(keys) == 1:
        key = flat["k"].astype("int64")
    else:
        key = flat["k"].astype("int64") + 3 * flat["j"].astype("int64")
    cents = (flat["s"] * 100).round().fillna(0).astype("int64")
    low = (flat["m"] * 100).round().fillna(0).astype("int64")
    return {
        "groups": len(flat),
        "keys": int(key.sum()),
        "rows": int(flat["n"].sum()),
        "sums": int(cents.sum()),
        "lows": int(low.sum()),
        "nulls": int(flat["s"].isna().sum()),
        "whole": int((numpy.fmod(key, 16381) * numpy.fmod(flat["n"] + cents + low, 16381)).sum()),
    }


def group(request):
    clock = time.process_time if request["cpu"] else time.perf_counter
    start = clock()
    found = grouped()
    reply = {"seconds": clock() - start}
    if request["check"]:
        reply["sums"] = sums_of(found)
    return reply


def answer(request):
    return open_file(request) if request["do"] == "open" else group(request)


for line in sys.stdin:
    try:
        reply = answer(json.loads(line))
    except Exception as error:  # whatever it is, the benchmark says so
        reply = {"error": f"{type(error).__name__}: {error}"}
    print(json.dumps(reply), flush=True)
