"""numexpr as a peer: computes an expression over columns of doubles, and says how long that took.

Takes requests as lines of JSON on standard input and answers each with a line of JSON:

    {"do": "open", "path": FILE, "rows": 1000}     columns a, b, c one behind the other, NaN for a null
    {"do": "compute", "expression": "a+b", "cpu": false}  -> {"seconds": 1.5, "sum": 3.5}, the sum without the nulls
"""

import json
import sys
import time

import numexpr
import numpy

numexpr.set_num_threads(1)
columns = {}


def open_file(request):
    numbers = numpy.fromfile(request["path"], dtype=numpy.float64)
    rows = request["rows"]
    for place, name in enumerate("abc"):
        columns[name] = numbers[place * rows : (place + 1) * rows].copy()
    return {"rows": rows}


def compute(request):
    clock = time.process_time if request["cpu"] else time.perf_counter
    start = clock()
    result = numexpr.evaluate(request["expression"], local_dict=columns, global_dict={})
    return {"seconds": clock() - start, "sum": float(numpy.nansum(result))}


def answer(request):
    return open_file(request) if request["do"] == "open" else compute(request)


for line in sys.stdin:
    try:
        reply = answer(json.loads(line))
    except Exception as error:  # whatever it is, the benchmark says so
        reply = {"error": str(error)}
    print(json.dumps(reply), flush=True)
