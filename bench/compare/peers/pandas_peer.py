"""Pandas as a peer: loads the sales into a data frame, and says how long that took.

Takes requests as lines of JSON on standard input and answers each with a line of JSON:

    {"kind": "sqlite", "path": FILE, "select": TEXT, "cpu": false, "check": true}
    {"kind": "mariadb", "socket": FILE, "database": NAME, ...}
    -> {"seconds": 1.5, "sums": {...}}, with the sums where "check" asks for them
"""

import json
import sqlite3
import sys
import time
import warnings

import pandas


def connect(request):
    if request["kind"] == "sqlite":
        return sqlite3.connect(request["path"])
    import MySQLdb

    return MySQLdb.connect(unix_socket=request["socket"], user="root", db=request["database"], charset="utf8mb4")


def load(connection, select):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")  # pandas would rather have another library's connection
        return pandas.read_sql_query(select, connection, parse_dates={"day": {"format": "%Y-%m-%d"}})


def sums_of(frame):
    code = frame["code"].str[4:].astype("int64")
    description = frame["description"].str[22:].astype("int64")
    rating = frame["rating"].fillna(0).astype("int64")
    whole = (description % 16381) * ((frame["number"] + code + rating) % 16381)
    cents = (frame["amount"].dropna() * 100).round().astype("int64") + 50_000_000
    found = {
        "rows": len(frame),
        "number": frame["number"].sum(),
        "rating": rating.sum(),
        "rating_nulls": frame["rating"].isna().sum(),
        "cents": cents.sum(),
        "amount_nulls": frame["amount"].isna().sum(),
        "days": (frame["day"].astype("int64") // 86_400_000_000_000).sum(),
        "code": code.sum(),
        "description": description.sum(),
        "whole": whole.sum(),
    }
    return {name: int(value) for name, value in found.items()}


def answer(request):
    connection = connect(request)
    clock = time.process_time if request["cpu"] else time.perf_counter
    start = clock()
    frame = load(connection, request["select"])
    reply = {"seconds": clock() - start}
    connection.close()
    if request["check"]:
        reply["sums"] = sums_of(frame)
    return reply


def main():
    for line in sys.stdin:
        try:
            reply = answer(json.loads(line))
        except Exception as error:  # whatever it is, the asker is told
            reply = {"error": f"{type(error).__name__}: {error}"}
        print(json.dumps(reply), flush=True)


if __name__ == "__main__":
    main()
