// Polars as a peer: joins sales with their customers, and says how long that took. Takes requests as lines of JSON on
// standard input and answers each with a line of JSON:
//
//     {"do": "open", "sales": FILE, "customers": FILE}                          -> {"rows": 1000}
//     {"do": "join", "key": "code", "payload": ["rating"], "cpu": false, "check": true}
//     -> {"seconds": 1.5, "sums": {...}}, with the sums where "check" asks for them
//
// Its one argument is the directory that polars is installed in; node runs it with --expose-gc.
"use strict";

const path = require("path");
const readline = require("readline");
const pl = require(path.join(process.argv[2], "node_modules", "nodejs-polars"));

const MODULUS = 16381;
let sales = null;
let customers = null;

function open(request) {
  sales = pl.readCSV(request.sales, { schema: { key: pl.Int32, code: pl.Utf8, value: pl.Float64 } });
  customers = pl
    .readCSV(request.customers, {
      schema: {
        key: pl.Int32,
        code: pl.Utf8,
        rating: pl.Int32,
        credit: pl.Float64,
        label: pl.Utf8,
        since: pl.Int64,
      },
    })
    .withColumns(pl.col("since").mul(pl.lit(1000)).cast(pl.Datetime("ms")).alias("since"));
  return { rows: sales.height };
}

function sumsOf(joined) {
  const cents = pl.col("value").mul(pl.lit(100)).round(0).cast(pl.Int64).fillNull(0);
  const rating = pl.col("rating").cast(pl.Int64).fillNull(0);
  const wanted = {
    cents: cents,
    rating: rating,
    rating_nulls: pl.col("rating").isNull().cast(pl.Int64),
    whole: cents.modulo(pl.lit(MODULUS)).mul(rating),
  };
  const columns = Object.entries(wanted).map(([name, value]) => value.sum().alias(name));
  const sums = joined.select(...columns).row(0);
  const names = Object.keys(wanted);
  return Object.fromEntries([["rows", joined.height], ...names.map((name, i) => [name, Number(sums[i])])]);
}

function secondsNow(cpu) {
  if (cpu) {
    const usage = process.cpuUsage();
    return (usage.user + usage.system) / 1e6;
  }
  return Number(process.hrtime.bigint()) / 1e9;
}

function join(request) {
  global.gc(); // lets go of the last result
  const start = secondsNow(request.cpu);
  const joined = sales
    .select(request.key, "value")
    .join(customers.select(request.key, ...request.payload), { on: request.key, how: "inner" });
  const reply = { seconds: secondsNow(request.cpu) - start };
  if (request.check) {
    reply.sums = sumsOf(joined);
  }
  return reply;
}

readline.createInterface({ input: process.stdin }).on("line", (line) => {
  let reply;
  try {
    const request = JSON.parse(line);
    reply = request.do === "open" ? open(request) : join(request);
  } catch (error) {
    reply = { error: String(error) };
  }
  process.stdout.write(JSON.stringify(reply) + "\n");
});
