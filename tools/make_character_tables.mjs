// Writes unicode/range_tables.inc, unicode/ascii_classes.inc and unicode/case_tables.inc from the npm packages
// @unicode/unicode-9.0.0 (classes, smallest and largest case partner) and @unicode/unicode-3.0.0 (lower and upper case).
// Run `npm ci && npm run tables` in this folder after a change, and commit the outputs with it. Building needs none of it.
// Every count is asserted, so that another version of the data is noticed here and not in a comparison of texts.
import assert from "node:assert/strict";
import { writeFileSync } from "node:fs";

// --- What the tables hold ---------------------------------------------------------------------------------------------

const letters = ["Lu", "Ll", "Lt", "Lm", "Lo"];
const marks = ["Mn", "Mc", "Me"];
const numbers = ["Nd", "Nl", "No"];
const punctuation = ["Pc", "Pd", "Ps", "Pe", "Pi", "Pf", "Po"];
const symbols = ["Sm", "Sc", "Sk", "So"];
const separators = ["Zs", "Zl", "Zp"];

const hexLetters = [...range(0x41, 0x46), ...range(0x61, 0x66), ...range(0xff21, 0xff26), ...range(0xff41, 0xff46)];

const rangeTables = [
  // name           general categories                                            runs  further code points
  ["digitranges",   ["Nd"],                                                       54],
  ["lowerranges",   ["Ll"],                                                       633],
  ["upperranges",   ["Lu"],                                                       627],
  ["alpharanges",   letters,                                                      571],
  ["printranges",   [...letters, ...marks, ...numbers, ...punctuation, ...symbols, ...separators], 641],
  ["graphranges",   [...letters, ...marks, ...numbers, ...punctuation, ...symbols], 641],
  ["punctranges",   punctuation,                                                  168],
  ["controlranges", ["Zl", "Zp", "Cc", "Cf"],                                     20],
  ["xdigitranges",  ["Nd"],                                                       58,   hexLetters],
];

// White space is a list of its own, not a category.
const spaceRanges = [
  [9, 13], [32, 32], [133, 133], [160, 160], [5760, 5760], [8192, 8202], [8232, 8232], [8233, 8233], [8239, 8239],
  [8287, 8287], [12288, 12288],
];

// The class bit of a category is 1 << its place here.
const categories = {
  Lu: "Uppercase_Letter", Ll: "Lowercase_Letter", Lt: "Titlecase_Letter", Mn: "Nonspacing_Mark", Mc: "Spacing_Mark",
  Me: "Enclosing_Mark", Nd: "Decimal_Number", Nl: "Letter_Number", No: "Other_Number", Zs: "Space_Separator",
  Zl: "Line_Separator", Zp: "Paragraph_Separator", Cc: "Control", Cf: "Format", Cs: "Surrogate", Co: "Private_Use",
  Cn: "Unassigned", Lm: "Modifier_Letter", Lo: "Other_Letter", Pc: "Connector_Punctuation", Pd: "Dash_Punctuation",
  Ps: "Open_Punctuation", Pe: "Close_Punctuation", Pi: "Initial_Punctuation", Pf: "Final_Punctuation",
  Po: "Other_Punctuation", Sm: "Math_Symbol", Sc: "Currency_Symbol", Sk: "Modifier_Symbol", So: "Other_Symbol",
};

const listedElsewhere = -128;  // a delta of the 8-bit rows that sends the reader to the list of exceptions
const dotlessI = 0x131;        // the one exception that maps one way only

// --- Reading the data --------------------------------------------------------------------------------------------------

function range(low, high) {
  return Array.from({ length: high - low + 1 }, (_, i) => low + i);
}

async function load(version, path) {
  return (await import(`@unicode/unicode-${version}/${path}/code-points.mjs`)).default;
}

const inCategory = (short) => load("9.0.0", `General_Category/${categories[short]}`);

async function simpleMapping(version, direction) {
  const all = await load(version, `Simple_Case_Mapping/${direction}`);
  return new Map([...all].filter(([from, to]) => from < 0x10000 && to < 0x10000 && from !== to));
}

// --- Shaping it --------------------------------------------------------------------------------------------------------

function maximalRuns(codePoints) {
  const runs = [];
  for (const c of [...new Set(codePoints)].sort((a, b) => a - b)) {
    if (runs.length > 0 && runs.at(-1)[1] === c - 1) runs.at(-1)[1] = c;
    else runs.push([c, c]);
  }
  return runs;
}

/// Splits mappings (code point to delta) into rows of 128 for the blocks that one of them touches.
function rowsOf(...mappings) {
  const blocks = [...new Set(mappings.flatMap((m) => [...m.keys()].map((c) => c >> 7)))].sort((a, b) => a - b);
  const meta = Array(512).fill(-1);
  blocks.forEach((block, row) => (meta[block] = row * 128));
  const rows = mappings.map((m) => blocks.map((block) => range(block * 128, block * 128 + 127).map((c) => m.get(c) ?? 0)));
  return { blocks, meta, rows };
}

/// The deltas of one direction that fit 8 bits, and the pairs that stand in the list of exceptions.
function narrow(mapping, opposite) {
  const deltas = new Map();
  const exceptions = [];
  for (const [from, to] of mapping) {
    const delta = to - from;
    if (Math.abs(delta) <= 127) {
      deltas.set(from, delta);
    } else if (Math.abs(delta) !== 128 && (opposite.get(to) === from || from === dotlessI)) {
      deltas.set(from, listedElsewhere);
      exceptions.push([from, to]);
    }
  }
  return { deltas, exceptions: exceptions.sort((a, b) => a[0] - b[0]) };
}

/// For every code point of a class that the mappings connect: the distance to what `pick` takes of the class.
function toExtreme(mappings, pick) {
  const classes = new Map();
  const classOf = (c) => classes.get(c) ?? classes.set(c, new Set([c])).get(c);
  for (const [from, to] of mappings.flatMap((m) => [...m])) {
    const merged = new Set([...classOf(from), ...classOf(to)]);
    for (const member of merged) classes.set(member, merged);
  }
  return new Map([...classes].map(([c, members]) => [c, pick(...members) - c]).filter(([, delta]) => delta !== 0));
}

// --- Writing it --------------------------------------------------------------------------------------------------------

const hex = (c) => `0x${c.toString(16).toUpperCase().padStart(4, "0")}`;

function lines(items, perLine) {
  const result = [];
  for (let i = 0; i < items.length; i += perLine) result.push(`    ${items.slice(i, i + perLine).join(" ")}`);
  return result.join("\n");
}

function declaration(comment, type, name, size, body) {
  return `\n// ${comment}\ninline constexpr ${type} ${name}[${size}] = {\n${body}\n};\n`;
}

function write(file, sources, tables) {
  const head = `// Generated by tools/make_character_tables.mjs from ${sources} (npm). Do not edit.\n`;
  writeFileSync(new URL(`../unicode/${file}`, import.meta.url), head + tables.join(""));
}

const rangeTable = (name, comment, runs) => declaration(
  comment, "CodePointRange", name, runs.length, lines(runs.map(([low, high]) => `{${hex(low)}, ${hex(high)}},`), 6));

const metaTable = (type, name, comment, meta) =>
  declaration(comment, type, name, meta.length, lines(meta.map((start) => `${start},`), 16));

const shiftTable = (type, name, comment, { blocks }, rows) => declaration(
  comment, type, name, `${rows.length} * 128`,
  rows.map((row, i) => `    // U+${hex(blocks[i] * 128).slice(2)}\n${lines(row.map((delta) => `${delta},`), 16)}`).join("\n"));

const auxTable = (name, comment, pairs) => declaration(
  comment, "uint32_t", name, `${pairs.length} * 2 + 1`,
  `${lines(pairs.map(([from, to]) => `${hex(from)}, ${hex(to)},`), 4)}\n    0,`);

// --- Ranges and classes ------------------------------------------------------------------------------------------------

const ranges = [];
for (const [name, wanted, count, further = []] of rangeTables) {
  const runs = maximalRuns([...(await Promise.all(wanted.map(inCategory))).flat(), ...further]);
  assert.equal(runs.length, count, `${name}: is this Unicode 9.0?`);
  const also = further.length > 0 ? " and the letters A to F" : "";
  ranges.push(rangeTable(name, `General categories ${wanted.join(" ")}${also}, as inclusive runs of code points.`, runs));
}
assert.equal(spaceRanges.length, 11);
ranges.push(rangeTable("spaceranges", "White space.", spaceRanges));
write("range_tables.inc", "@unicode/unicode-9.0.0", ranges);

const bitOf = new Map();
for (const [place, short] of Object.keys(categories).entries()) {
  for (const c of await inCategory(short)) if (c < 128) bitOf.set(c, 1 << place);
}
assert.equal(bitOf.size, 128);
const lower9 = await simpleMapping("9.0.0", "Lowercase");
const upper9 = await simpleMapping("9.0.0", "Uppercase");
const asciiClasses = range(0, 127).map((c) =>
  `{${hex(c)}, 0x${bitOf.get(c).toString(16).toUpperCase()}, 0, 0, ${hex(upper9.get(c) ?? 0)}, ${hex(lower9.get(c) ?? 0)}, 0, 0},`);
write("ascii_classes.inc", "@unicode/unicode-9.0.0", [
  declaration("Code, class bits, secondary class, reserved, upper-case and lower-case partner or 0, reserved twice.",
              "AsciiClass", "ansi_ccl", 128, lines(asciiClasses, 2)),
]);

// --- Case --------------------------------------------------------------------------------------------------------------

const lower3 = await simpleMapping("3.0.0", "Lowercase");
const upper3 = await simpleMapping("3.0.0", "Uppercase");
const down = narrow(lower3, upper3);
const up = narrow(upper3, lower3);
const casing = rowsOf(down.deltas, up.deltas);
assert.equal(rowsOf(lower3, upper3).blocks.length, 19, "blocks with a case mapping: is this Unicode 3.0?");
assert.equal(casing.blocks.length, 19);
assert.equal(down.exceptions.length, 19);
assert.equal(up.exceptions.length, 20);
assert.deepEqual(up.exceptions.filter(([from]) => from !== dotlessI),
                 down.exceptions.map(([from, to]) => [to, from]).sort((a, b) => a[0] - b[0]));

const smallest = rowsOf(toExtreme([lower9, upper9], Math.min));
const largest = rowsOf(toExtreme([lower9, upper9], Math.max));
assert.equal(smallest.blocks.length, 31, "blocks with a smaller partner: is this Unicode 9.0?");
assert.equal(largest.blocks.length, 29, "blocks with a larger partner: is this Unicode 9.0?");

const starts = "by code point >> 7, or -1";
write("case_tables.inc", "@unicode/unicode-3.0.0 and @unicode/unicode-9.0.0", [
  metaTable("int16_t", "qmz_metatable", `Where the rows of lower and upper case start, ${starts}.`, casing.meta),
  shiftTable("int8_t", "qmz_downshift", "To lower case; -128: see qmz_downaux.", casing, casing.rows[0]),
  shiftTable("int8_t", "qmz_upshift", "To upper case; -128: see qmz_upaux.", casing, casing.rows[1]),
  auxTable("qmz_downaux", "Lower case that is further away: from, to, ended by a 0.", down.exceptions),
  auxTable("qmz_upaux", "Upper case that is further away: from, to, ended by a 0.", up.exceptions),
  metaTable("int32_t", "qmz_min_meta", `Where the rows of qmz_minshift start, ${starts}.`, smallest.meta),
  shiftTable("int32_t", "qmz_minshift", "To the smallest character of the case class.", smallest, smallest.rows[0]),
  metaTable("int32_t", "qmz_max_meta", `Where the rows of qmz_maxshift start, ${starts}.`, largest.meta),
  shiftTable("int32_t", "qmz_maxshift", "To the largest character of the case class.", largest, largest.rows[0]),
]);
