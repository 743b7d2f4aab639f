// Polars as a peer: computes an expression over columns of doubles, and says how long that took. Takes requests as
// lines of JSON on standard input and answers each with a line of JSON:
//
//     {"do": "open", "path": FILE, "rows": 1000}       columns a, b, c one behind the other, NaN for a null
//     {"do": "compute", "expression": NAME, "cpu": false}  -> {"seconds": 1.5, "sum": 3.5}, the sum without the nulls
//
// Its one argument is the directory that polars is installed in; node runs it with --expose-gc.
"use strict";

const fs = require("fs");
const path = require("path");
const readline = require("readline");
const pl = require(path.join(process.argv[2], "node_modules", "nodejs-polars"));

const col = pl.col;
const EXPRESSIONS = {
  sums: () => col("a").add(col("b").mul(col("c"))).sub(col("a").div(col("b").add(pl.lit(1)))),
  powers: () => col("a").pow(2).add(col("b").pow(0.5)),
};

let numbers = null;

function open(request) {
  const bytes = fs.openSync(request.path, "r");
  const columns = {};
  for (const name of ["a", "b", "c"]) {
    const values = new Float64Array(request.rows);
    fs.readSync(bytes, new Uint8Array(values.buffer));
    columns[name] = pl.Series(name, values);
  }
  fs.closeSync(bytes);
  const withNulls = (name) => pl.when(col(name).isNotNan()).then(col(name)).otherwise(pl.lit(null)).alias(name);
  numbers = pl.DataFrame(Object.values(columns)).select(withNulls("a"), withNulls("b"), withNulls("c"));
  return { rows: numbers.height, nulls: numbers.getColumn("a").nullCount() };
}

function secondsNow(cpu) {
  if (cpu) {
    const usage = process.cpuUsage();
    return (usage.user + usage.system) / 1e6;
  }
  return Number(process.hrtime.bigint()) / 1e9;
}

function compute(request) {
  global.gc(); // lets go of the last result
  const expression = EXPRESSIONS[request.expression]().alias("r");
  const start = secondsNow(request.cpu);
  const computed = numbers.select(expression);
  const seconds = secondsNow(request.cpu) - start;
  return { seconds: seconds, sum: computed.getColumn("r").sum() };
}

function answer(request) {
  return request.do === "open" ? open(request) : compute(request);
}

readline.createInterface({ input: process.stdin }).on("line", (line) => {
  let reply;
  try {
    reply = answer(JSON.parse(line));
  } catch (error) {
    reply = { error: String(error) };
  }
  process.stdout.write(JSON.stringify(reply) + "\n");
});
