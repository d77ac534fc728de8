// Prints what mdb-reader finds in a Jet database, for comparison with what was written:
//   node mdb_reader.mjs ORACLES FILE         the names of the tables, one a line
//   node mdb_reader.mjs ORACLES FILE TABLE   its rows, one a line, columns separated by |, a null as <null>
// ORACLES is the folder in which npm installed the reader.
import fs from "node:fs";
import { createRequire } from "node:module";
import path from "node:path";
import { pathToFileURL } from "node:url";

const [oracles, file, table] = process.argv.slice(2);
const found = createRequire(path.resolve(oracles, "package.json")).resolve("mdb-reader");
const { default: MDBReader } = await import(pathToFileURL(found));

const reader = new MDBReader(fs.readFileSync(file));
const lines = table
  ? reader.getTable(table).getData().map((row) => Object.values(row).map((value) => value ?? "<null>").join("|"))
  : reader.getTableNames();
for (const line of lines) process.stdout.write(line + "\n");
