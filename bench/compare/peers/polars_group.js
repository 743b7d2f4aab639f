// Polars as a peer: groups a table of amounts by its keys, and says how long that took. Takes requests as lines of JSON
// on standard input and answers each with a line of JSON:
//
//     {"do": "open", "path": FILE, "keys": ["k"], "texts": false}   a CSV file: the keys, and the amounts "v"
//     {"do": "group", "cpu": false, "check": true}  -> {"seconds": 1.5, "sums": {...}}, with the sums where asked for
//
// Its one argument is the directory that polars is installed in; node runs it with --expose-gc.
"use strict";

const path = require("path");
const readline = require("readline");
const pl = require(path.join(process.argv[2], "node_modules", "nodejs-polars"));

const MODULUS = 16381;
let table = null;
let keys = null;
let hasTexts = false;

function open(request) {
  keys = request.keys;
  hasTexts = request.texts;
  const kinds = Object.fromEntries(keys.map((key) => [key, hasTexts ? pl.Utf8 : pl.Int32]));
  table = pl.readCSV(request.path, { schema: { ...kinds, v: pl.Float64 } });
  return { rows: table.height };
}

const int = (expression) => expression.cast(pl.Int64);
const cents = (name) => int(pl.col(name).mul(pl.lit(100)).round(0)).fillNull(0);

// The remainder with the sign of the number.
const rest = (expression) =>
  pl
    .when(expression.lt(0))
    .then(expression.mul(pl.lit(-1)).modulo(pl.lit(MODULUS)).mul(pl.lit(-1)))
    .otherwise(expression.modulo(pl.lit(MODULUS)));

function keyNumber() {
  if (hasTexts) {
    return int(pl.col("k").str.slice(4, 6));
  }
  const first = int(pl.col("k"));
  return keys.length === 1 ? first : first.add(int(pl.col("j")).mul(pl.lit(3)));
}

// The total of a group without an amount is null to us, and 0 here.
function sumsOf(grouped) {
  const flat = grouped.withColumns(
    keyNumber().alias("key"),
    cents("s").alias("cents"),
    cents("m").alias("low"),
    int(pl.col("n")).alias("rows"),
  );
  const whole = rest(pl.col("key")).mul(rest(pl.col("rows").add(pl.col("cents")).add(pl.col("low"))));
  const wanted = {
    keys: pl.col("key"),
    rows: pl.col("rows"),
    sums: pl.col("cents"),
    lows: pl.col("low"),
    nulls: int(pl.col("m").isNull()),
    whole: whole,
  };
  const sums = flat.select(...Object.entries(wanted).map(([name, value]) => value.sum().alias(name))).row(0);
  const names = Object.keys(wanted);
  return Object.fromEntries([["groups", flat.height], ...names.map((name, i) => [name, Number(sums[i])])]);
}

function secondsNow(cpu) {
  if (cpu) {
    const usage = process.cpuUsage();
    return (usage.user + usage.system) / 1e6;
  }
  return Number(process.hrtime.bigint()) / 1e9;
}

function group(request) {
  global.gc(); // lets go of the last result
  const start = secondsNow(request.cpu);
  const grouped = table
    .groupBy(...keys)
    .agg(pl.col("v").sum().alias("s"), pl.col("v").min().alias("m"), pl.col(keys[0]).count().alias("n"));
  const reply = { seconds: secondsNow(request.cpu) - start };
  if (request.check) {
    reply.sums = sumsOf(grouped);
  }
  return reply;
}

function answer(request) {
  return request.do === "open" ? open(request) : group(request);
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
