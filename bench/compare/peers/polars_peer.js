// Polars as a peer: reads the sales from a CSV file, sorts them, and says how long the sort took. Takes requests as
// lines of JSON on standard input and answers each with a line of JSON:
//
//     {"do": "open", "path": FILE}                                        -> {"rows": 1000}
//     {"do": "sort", "by": ["number"], "order": NAME, "cpu": false, "check": true}
//     -> {"seconds": 1.5, "sums": {...}}, with the sums where "check" asks for them
//
// Its one argument is the directory that polars is installed in; node runs it with --expose-gc.
"use strict";

const path = require("path");
const readline = require("readline");
const pl = require(path.join(process.argv[2], "node_modules", "nodejs-polars"));

const MODULUS = 16381;
let sales = null;

function open(request) {
  sales = pl.readCSV(request.path, {
    schema: {
      number: pl.Int32,
      rating: pl.Int32,
      amount: pl.Float64,
      day: pl.Int64,
      code: pl.Utf8,
      description: pl.Utf8,
    },
  });
  sales = sales.withColumns(pl.col("day").mul(pl.lit(1000)).cast(pl.Datetime("ms")).alias("day"));
  return { rows: sales.height };
}

const int = (column) => pl.col(column).cast(pl.Int64);
const numberAt = (column, start) => pl.col(column).str.slice(start, 8).cast(pl.Int64);
const cents = () => pl.col("amount").mul(pl.lit(100)).round(0).cast(pl.Int64).add(pl.lit(50000000));
const rest = (expression) => expression.modulo(pl.lit(MODULUS));

// What stands where: each with its row's place in the order.
const ORDERS = {
  numbers: () => ({ order: int("number"), order2: cents().fillNull(0) }),
  code: () => ({ order: numberAt("code", 4) }),
};

function sumsOf(sorted, order) {
  const whole = rest(numberAt("description", 22)).mul(
    rest(int("number").add(numberAt("code", 4)).add(int("rating").fillNull(0))),
  );
  const wanted = {
    number: int("number"),
    rating: int("rating"),
    rating_nulls: pl.col("rating").isNull().cast(pl.Int64),
    cents: cents(),
    amount_nulls: pl.col("amount").isNull().cast(pl.Int64),
    days: int("day").div(pl.lit(86400000)).floor().cast(pl.Int64),
    code: numberAt("code", 4),
    description: numberAt("description", 22),
    whole: whole,
  };
  for (const [name, value] of Object.entries(ORDERS[order]())) {
    wanted[name] = rest(int("place")).add(pl.lit(1)).mul(rest(value));
  }
  const placed = sorted.withRowCount("place");
  const columns = Object.entries(wanted).map(([name, value]) => value.sum().alias(name));
  const sums = placed.select(...columns).row(0);
  const names = Object.keys(wanted);
  return Object.fromEntries([["rows", sorted.height], ...names.map((name, i) => [name, Number(sums[i])])]);
}

function secondsNow(cpu) {
  if (cpu) {
    const usage = process.cpuUsage();
    return (usage.user + usage.system) / 1e6;
  }
  return Number(process.hrtime.bigint()) / 1e9;
}

function sort(request) {
  global.gc(); // lets go of the last result
  const start = secondsNow(request.cpu);
  const sorted = sales.sort({ by: request.by.map((name) => pl.col(name)), nullsLast: false });
  const reply = { seconds: secondsNow(request.cpu) - start };
  if (request.check) {
    reply.sums = sumsOf(sorted, request.order);
  }
  return reply;
}

function answer(request) {
  return request.do === "open" ? open(request) : sort(request);
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
