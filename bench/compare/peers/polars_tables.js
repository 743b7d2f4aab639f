// Polars as a peer in work on whole tables: cross tables, unions, CSV. Takes requests as lines of JSON on standard input
// and answers each with a line of JSON:
//
//     {"do": "open-numbers", "path": FILE, "rows": 1000}  three columns of doubles one behind the other, NaN for a null
//     {"do": "open-sales", "path": FILE}                  a CSV file of sales, added to those read before
//     {"do": "pivot", "cpu": false}                       -> {"seconds": 1.5, "sum": 3.5}
//     {"do": "union", "cpu": false, "check": true}        -> {"seconds": 1.5, "sums": {...}}
//     {"do": "csv", "path": FILE, "cpu": false}           -> {"seconds": 1.5}, with a file written
//
// Its one argument is the directory that polars is installed in; node runs it with --expose-gc.
"use strict";

const fs = require("fs");
const path = require("path");
const readline = require("readline");
const pl = require(path.join(process.argv[2], "node_modules", "nodejs-polars"));

const MODULUS = 16381;
const col = pl.col;
const int = (column) => col(column).cast(pl.Int64);
const rest = (expression) => expression.modulo(pl.lit(MODULUS));
const sales = [];
let numbers = null;

function openNumbers(request) {
  const file = fs.openSync(request.path, "r");
  const columns = ["key", "heading", "amount"].map((name) => {
    const values = new Float64Array(request.rows);
    fs.readSync(file, new Uint8Array(values.buffer));
    return pl.Series(name, values);
  });
  fs.closeSync(file);
  numbers = pl.DataFrame(columns).select(
    col("key").cast(pl.Int32),
    col("heading").cast(pl.Int32),
    pl.when(col("amount").isNotNan()).then(col("amount")).otherwise(pl.lit(null)).alias("amount"),
  );
  return { rows: numbers.height };
}

function openSales(request) {
  const frame = pl.readCSV(request.path, {
    schema: {
      number: pl.Int32,
      rating: pl.Int32,
      amount: pl.Float64,
      day: pl.Int64,
      code: pl.Utf8,
      description: pl.Utf8,
    },
  });
  sales.push(frame.withColumns(col("day").mul(pl.lit(1000)).cast(pl.Datetime("ms")).alias("day")));
  return { rows: frame.height };
}

function secondsNow(cpu) {
  if (cpu) {
    const usage = process.cpuUsage();
    return (usage.user + usage.system) / 1e6;
  }
  return Number(process.hrtime.bigint()) / 1e9;
}

function timed(request, work) {
  global.gc(); // lets go of the last result
  const start = secondsNow(request.cpu);
  const result = work();
  return [secondsNow(request.cpu) - start, result];
}

// Grouped first: pivoting alone, with the sum as its function, takes twice as long.
function crossTable() {
  return numbers
    .groupBy("key", "heading")
    .agg(col("amount").sum())
    .pivot("amount", { index: "key", on: "heading", aggregateFunc: "first" });
}

function pivot(request) {
  const [seconds, table] = timed(request, crossTable);
  const headings = table.columns.filter((name) => name !== "key");
  let sum = 0;
  for (const name of headings) {
    sum += table.select(col(name).mul(col("key")).mul(pl.lit(Number(name))).alias("w")).getColumn("w").sum();
  }
  return { seconds: seconds, sum: sum };
}

function sumsOf(table) {
  const cents = col("amount").mul(pl.lit(100)).round(0).cast(pl.Int64).add(pl.lit(50000000));
  const wanted = {
    number: int("number"),
    cents: cents,
    amount_nulls: col("amount").isNull().cast(pl.Int64),
    days: int("day").div(pl.lit(86400000)).floor().cast(pl.Int64),
    code: col("code").str.slice(4, 8).cast(pl.Int64),
    order: rest(int("place")).add(pl.lit(1)).mul(rest(int("number"))),
  };
  const columns = Object.entries(wanted).map(([name, value]) => value.sum().alias(name));
  const sums = table.withRowCount("place").select(...columns).row(0);
  const names = Object.keys(wanted);
  return Object.fromEntries([["rows", table.height], ...names.map((name, i) => [name, Number(sums[i])])]);
}

// In one piece: without that it would only write down where the pieces are.
function union(request) {
  const parts = sales.map((frame) => frame.select("number", "amount", "day", "code"));
  const [seconds, table] = timed(request, () => pl.concat(parts, { how: "vertical", rechunk: true }));
  return { seconds: seconds, sums: request.check ? sumsOf(table) : {} };
}

const digits = (expression, count) => expression.cast(pl.Int64).cast(pl.Utf8).str.zFill(count);
const quotient = (expression, divisor) => expression.div(pl.lit(divisor)).floor().cast(pl.Int64);
const upTo = (expression, bound) => expression.modulo(pl.lit(bound));

// 1.234.567,89: there is no formatter for it, so it is put together.
function amountText() {
  const cents = col("amount").mul(pl.lit(100)).round(0).abs().cast(pl.Int64);
  const whole = quotient(cents, 100);
  const sign = pl.when(col("amount").lt(pl.lit(0))).then(pl.lit("-")).otherwise(pl.lit(""));
  const plain = (expression) => expression.cast(pl.Utf8);
  const group = (expression) => digits(upTo(expression, 1000), 3);
  const thousands = quotient(whole, 1000);
  const millions = quotient(whole, 1000000);
  const text = pl
    .when(millions.gt(pl.lit(0)))
    .then(pl.concatString([plain(millions), group(thousands), group(whole)], "."))
    .when(thousands.gt(pl.lit(0)))
    .then(pl.concatString([plain(thousands), group(whole)], "."))
    .otherwise(plain(whole));
  return pl.concatString([sign, text, pl.lit(","), digits(upTo(cents, 100), 2)], "");
}

function writeCsv(file) {
  sales[0]
    .select(
      col("number"),
      pl.when(col("amount").isNull()).then(pl.lit(null)).otherwise(amountText()).alias("amount"),
      col("day"),
      col("code"),
      col("description"),
      col("rating"),
    )
    .writeCSV(file, { includeHeader: false, separator: ";", datetimeFormat: "%d/%m/%Y" });
}

function csv(request) {
  const [seconds] = timed(request, () => writeCsv(request.path));
  return { seconds: seconds };
}

const WORK = { "open-numbers": openNumbers, "open-sales": openSales, pivot: pivot, union: union, csv: csv };

readline.createInterface({ input: process.stdin }).on("line", (line) => {
  let reply;
  try {
    const request = JSON.parse(line);
    reply = WORK[request.do](request);
  } catch (error) {
    reply = { error: String(error) };
  }
  process.stdout.write(JSON.stringify(reply) + "\n");
});
