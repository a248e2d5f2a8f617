#!/usr/bin/python3
"""Makes the generated half of the Python package.   generate.py SOURCE_DIR OUT_DIR

Reads the public headers and docs/rules.md; writes into OUT_DIR `_raw.c`, the extension (cffi, API mode, stable ABI),
`_table.py`, what the thin layer goes by, `_families.py`, one function for each family of operations, and the stubs
`_families.pyi`. An operation whose shape has no rule here ends the run with its name.
"""
import collections
import contextlib
import fnmatch
import pathlib
import re
import sys
import textwrap

ROOMS = ("arith", "elementary", "reduce", "threshold", "generate", "transform", "fir", "resample", "correlate")
SHARED = ("types", "status", "selectors")
TYPE = r"(?:\d+(?:u|sc|fc|s|f))"
NAME = re.compile(rf"ORVAS_(?P<family>\w+?)_(?P<types>{TYPE}+|decimal\d+)(?:_(?P<mode>S|I|IS|A\d+))?$")

# Python's names where the snake-case form of the library's would not be the field's term.
TERMS = {"DotProd": "dot", "StdDev": "std", "MeanStdDev": "mean_std", "PowerSpectr": "power_spectrum",
         "Goertz": "goertzel"}
DEFAULTS = {"hint": "0", "round_mode": "1", "phase": "0"}
KINDS = {"norm": '"l2"', "norm_diff": '"l2"', "powx": "None"}
# The library takes the divisor first, a quotient is written the other way round.
SWAPPED = {"div": ("dividend", "divisor"), "div_round": ("dividend", "divisor")}
PLACED = re.compile(r"Win|Tone|VectorJaehne|FFTShift|Goertz")  # an element's value goes by its place in the whole array

Argument = collections.namedtuple("Argument", "name type pointer const role", defaults=[None])
Operation = collections.namedtuple("Operation", "name arguments room title comment")
Row = collections.namedtuple("Row", "name family kind arguments in_place placed allocates title comment room")


def snake(name):
    return re.sub(r"(?<=[a-z0-9])(?=[A-Z])|(?<=[A-Z])(?=[A-Z][a-z])", "_", name).lower()


def read_header(path):
    """The declarations of a header as C, without comments and preprocessor lines, and its operations."""
    text = path.read_text()
    groups = [(m.start(), m[1], m[2]) for m in re.finditer(r"/\*\* @name (.*)\n((?: \*.*\n)+)", text)]
    operations = []
    for m in re.finditer(r"^TZM_API OrvaStatus (\w+)\(([^;]*)\)", text, re.M):
        arguments = []
        for words in (argument.split() for argument in m[2].replace("\n", " ").split(",")):
            pointer = words[-2].count("*") if len(words) > 1 else 0
            arguments.append(Argument(words[-1], words[-2].strip("*"), pointer, words[0] == "const"))
        _, title, comment = [group for group in groups if group[0] < m.start()][-1]
        comment = textwrap.dedent(re.sub(r"^ \* ?", "", comment, flags=re.M).partition("@{")[0]).strip()
        operations.append(Operation(m[1], arguments, path.stem, title.strip(), comment))
    code = re.sub(r"/\*.*?\*/", "", text, flags=re.S)
    code = re.sub(r"(^\s*#.*(\\\n.*)*$)|\bTZM_API\b", "", code, flags=re.M)
    return code, operations


def read_rules(page):
    """(patterns, in place, status of a refused allocation) for each row of the page's table."""
    rules = []
    for line in page.read_text().splitlines():
        if line.startswith("| `"):
            names, place, memory, _ = (cell.strip() for cell in line.strip("|").split("|"))
            rules.append((re.findall("`(.*?)`", names), place.startswith("yes"), 0 if memory == "no" else int(memory)))
    return rules


def is_regular(operation):
    """Whether arrays of one length, single values and a scale are all that it takes."""
    return all(a.name in ("len", "relOp", "hint", "roundMode") if a.type == "int32_t" and not a.pointer
               else a.type not in ("OrvaTransformSpec", "int32_t") and not re.search("State|Spec", a.type)
               for a in operation.arguments) and any(a.name == "len" for a in operation.arguments)


def roles(operation, scaled, in_place):
    length = [a.name for a in operation.arguments].index("len")
    for i, a in enumerate(operation.arguments):
        if a.pointer and a.const:
            role = "source" if i < length else "mask" if a.type == "Orva8u" else "input"
        elif a.pointer:
            role = "result" if i > length else "both" if in_place else "dst"
        else:
            role = "length" if i == length else "scale" if scaled and a.name.lower().endswith("scale") else "constant"
        yield a._replace(role=role, type={"int32_t": "32s", "uint32_t": "32u", "uint64_t": "64u", "double": "64f"}.get(
            a.type, a.type.removeprefix("Orva")))


def read(source):
    code, operations = "", []
    for name in SHARED + ROOMS:
        declarations, found = read_header(source / "include" / "signal_tzm" / f"{name}.h")
        code += declarations
        operations += found
    rules = read_rules(source / "docs" / "rules.md")
    rows, others = [], []
    for operation in operations:
        found = [rule for rule in rules if any(fnmatch.fnmatchcase(operation.name, p) for p in rule[0])]
        name = NAME.match(operation.name)
        if len(found) != 1:
            sys.exit(f"generate.py: {operation.name} stands in {len(found)} rows of docs/rules.md")
        if not is_regular(operation):
            others.append(operation)
            continue
        if not name:
            sys.exit(f"generate.py: no rule for the name {operation.name}")
        family, kind, mode = name["family"], None, name["mode"] or ""
        base, _, last = family.rpartition("_")
        if snake(base) in KINDS:
            family, kind = base, last.lower()
        elif mode.startswith("A"):
            kind = int(mode[1:])
        family = TERMS.get(family) or snake(family)
        arguments = list(roles(operation, mode in ("S", "IS"), mode in ("I", "IS")))
        rows.append(Row(operation.name, family, kind, arguments, found[0][1], bool(PLACED.match(name["family"])),
                        found[0][2], operation.title, operation.comment, operation.room))
    return code, rows, others


# ---- The extension ----

RUN = """
enum { TZM_ARRAYS = 6 };
enum { TZM_NONE, TZM_SOURCE, TZM_MASK, TZM_DST, TZM_BOTH, TZM_RESULT, TZM_VALUE };
typedef struct {
  OrvaStatus (*call)(char** p, int32_t n);
  unsigned char role[TZM_ARRAYS], size[TZM_ARRAYS];
  signed char given[TZM_ARRAYS];  /* which one in order of sources, masks, results, constants, scales; or -1 */
  unsigned char in_place, placed;
} Operation;

static int32_t tzm_longest = INT32_MAX;  /* of a call; what is longer goes in pieces where that changes no bit */

%s
static const Operation tzm_operations[] = {
%s};

static const struct {
  OrvaStatus (*call)(char** p);
  int count;  /* of arguments */
} tzm_others[] = {
%s};

/* Runs an operation on `rows` rows of `n` elements. Bit i of `shared` says that all rows use the one row g_i has.
 * -1: a destination overlaps what it must not. -2: longer than one call can be, and not to be split. */
static int32_t tzm_run(int32_t number, int64_t n, int64_t rows, uint32_t shared, void* g0, void* g1, void* g2, void* g3,
                       void* g4, void* g5) {
  const Operation* const o = tzm_operations + number;
  char* const given[TZM_ARRAYS] = {g0, g1, g2, g3, g4, g5};
  char* p[TZM_ARRAYS];
  size_t step[TZM_ARRAYS], bytes[TZM_ARRAYS];
  int64_t row;
  int32_t result = 0;
  int i, j, reduces = 0;
  for (i = 0; i < TZM_ARRAYS; ++i) {
    const int array = o->role[i] && o->role[i] <= TZM_BOTH, one = o->role[i] == TZM_RESULT, from = o->given[i];
    p[i] = from < 0 ? NULL : given[from];
    step[i] = p[i] && !(shared >> from & 1) ? (size_t)o->size[i] * (array ? n : one) : 0;
    bytes[i] = p[i] ? (size_t)o->size[i] * (array ? n : 1) * (step[i] ? rows : 1) : 0;
    reduces |= one;
  }
  for (i = 0; i < TZM_ARRAYS; ++i) {
    if (o->role[i] != TZM_DST && o->role[i] != TZM_BOTH && o->role[i] != TZM_RESULT) continue;
    for (j = 0; j < TZM_ARRAYS; ++j) {
      if (i == j || !bytes[j] || p[i] + bytes[i] <= p[j] || p[j] + bytes[j] <= p[i]) continue;
      if (p[i] == p[j] && o->in_place && o->role[j] == TZM_SOURCE && o->size[i] == o->size[j] && step[i] == step[j])
        continue;
      return -1;
    }
  }
  if (n > tzm_longest && (reduces || o->placed)) return -2;
  for (row = 0; row < rows; ++row) {
    char* at[TZM_ARRAYS];
    int64_t left = n;
    for (i = 0; i < TZM_ARRAYS; ++i) at[i] = p[i] + row * step[i];
    while (left > 0 || n <= 0) {
      /* A multiple of every block, and never a short rest: some operations look at the length. */
      const int64_t piece = left > tzm_longest ? tzm_longest / 8 * 3 / 96 * 96 : left;
      const OrvaStatus status = o->call(at, (int32_t)piece);
      if (status) result = status;
      if (n <= 0 || (status && status < 200)) return result;
      for (i = 0; i < TZM_ARRAYS; ++i)
        if (step[i] && o->role[i] <= TZM_BOTH) at[i] += (size_t)o->size[i] * piece;
      left -= piece;
    }
  }
  return result;
}

/* Runs one of the other operations, those on states, on `rows` rows. p[i] is its argument i where that is a pointer,
 * else where its value is; for each further row it lies steps[i] bytes on. */
static int32_t tzm_rows(int32_t number, int64_t rows, void* const* p, const int64_t* steps) {
  const int count = tzm_others[number].count;
  char* at[16];
  int32_t result = 0;
  int64_t row;
  int i;
  for (row = 0; row < rows; ++row) {
    OrvaStatus status;
    for (i = 0; i < count; ++i) at[i] = (char*)p[i] + (row ? row * steps[i] : 0);
    status = tzm_others[number].call(at);
    if (status) result = status;
    if (status && status < 300) break;
  }
  return result;
}
"""


def c_type(argument):
    return {"32u": "uint32_t", "64u": "uint64_t"}.get(argument.type, "Orva" + argument.type)


def given(row, kept):
    """The arguments in the order in which the thin layer gives them: a source that is the result, as the result."""
    places = lambda *roles: [i for i, a in enumerate(kept) if a.role in roles]
    sources = places("source", "both")
    results = sorted(places("dst", "both", "result"), key=lambda i: kept[i].name == "overflow")
    if row.family in SWAPPED:
        sources.reverse()
    return ([i for i in sources if i not in results] + places("mask") + results + places("constant", "input") +
            places("scale"))


def extension(code, rows, others):
    import cffi  # what only reads the tables needs none

    role = {"source": "SOURCE", "mask": "MASK", "dst": "DST", "both": "BOTH", "result": "RESULT"}
    functions, table = "", ""
    for row in rows:
        values, kept = [], [a for a in row.arguments if a.role != "length"]
        for a in row.arguments:
            if a.role == "length":
                values.append("n")
            else:
                star = "" if a.pointer else "*"
                values.append(f"{star}({'const ' if a.const or star else ''}{c_type(a)}*)p[{kept.index(a)}]")
        functions += (f"static OrvaStatus run_{row.name}(char** p, int32_t n) {{\n"
                      f"  return {row.name}({', '.join(values)});\n}}\n")
        marks = ", ".join("TZM_" + role.get(a.role, "VALUE") for a in kept)
        sizes = ", ".join(f"sizeof({c_type(a)})" for a in kept)
        order = given(row, kept)
        places = ", ".join(str(order.index(i) if i in order else -1) for i in range(6))
        table += (f"  {{run_{row.name}, {{{marks}}}, {{{sizes}}}, {{{places}}}, {row.in_place:d}, "
                  f"{row.placed:d}}},\n")
    rest = ""
    for operation in others:
        values = [f"({a.type}{'*' * a.pointer})p[{i}]" if a.pointer else f"*(const {a.type}*)p[{i}]"
                  for i, a in enumerate(operation.arguments)]
        functions += (f"static OrvaStatus run_{operation.name}(char** p) {{\n"
                      f"  return {operation.name}({', '.join(values)});\n}}\n")
        rest += f"  {{run_{operation.name}, {len(values)}}},\n"
    ffi = cffi.FFI()
    ffi.cdef(code + "static int32_t tzm_longest; int32_t tzm_run(int32_t, int64_t, int64_t, uint32_t," +
             ", ".join(["void*"] * 6) + "); int32_t tzm_rows(int32_t, int64_t, void* const*, const int64_t*);")
    ffi.set_source("signal_tzm._raw", "#include <signal_tzm.h>\n" + RUN % (functions, table, rest))
    return ffi


# ---- The families ----

def signature(family, rows):
    """(positional parameters, keyword ones, sources, constants, scales, outputs) of a family's function."""
    longest = max(rows, key=lambda row: sum(a.role in ("source", "both") for a in row.arguments))
    sources = [snake(a.name) for a in longest.arguments if a.role in ("source", "both")]
    fewest = min(sum(a.role in ("source", "both") for a in row.arguments) for row in rows)
    if sources == ["src_re", "src_im"] and fewest == 1:
        sources[0] = "src"
    sources = [{"src_dst": "src2" if len(sources) > 1 else "src"}.get(name, name) for name in sources]
    sources = list(SWAPPED.get(family, sources))
    constants, scales, masks, outputs = [], [], [], []
    for row in rows:
        for a in row.arguments:
            into = {"constant": constants, "input": constants, "scale": scales, "mask": masks}.get(a.role)
            if into is not None and snake(a.name) not in into:
                into.append(snake(a.name))
    for a in rows[0].arguments:
        if a.role in ("dst", "result", "both"):
            outputs.append(snake(a.name))
    outputs.sort(key=lambda name: name == "overflow")
    positional = [name if i < fewest or family in SWAPPED else f"{name}=None" for i, name in enumerate(sources)]
    positional += [f"{name}=None" for name in masks] if sources else ["n"]
    required = [c for c in constants if c not in DEFAULTS and all(
        c in map(snake, (a.name for a in row.arguments)) for row in rows)]
    positional += [c for c in constants if c in required]
    keywords = [f"{c}={DEFAULTS.get(c)}" for c in constants if c not in required]
    if family in KINDS:
        keywords.insert(0, f"kind={KINDS[family]}")
    keywords += ["out=None"] * bool({"dst", "both"} & {a.role for row in rows for a in row.arguments})
    keywords += [f"{name}=None" for name in scales]
    keywords += ["dtype=None", f"axis={-1 if rows[0].placed else None}"] if sources else ["dtype=None"]
    return positional, keywords, sources, constants, scales, masks, outputs


def docstring(family, rows, sources):
    text = ""
    for title, comment in dict.fromkeys((row.title, row.comment) for row in rows):
        text += f"\n{title}\n{'-' * len(title)}\n{comment}\n"
    if family in SWAPPED:
        text += "\nHere the dividend comes first: `dividend` is src2 (srcDst in place), `divisor` is src1 (src).\n"
    place = "may be" if rows[0].in_place else "must not overlap"
    if any(a.role == "dst" for row in rows for a in row.arguments):
        text += f"\n`out` {place} a source array.\n"
    text += "\nOperations: " + ", ".join(row.name.removeprefix("ORVAS_") for row in rows) + "\n"
    return text.replace("\\", "\\\\").strip()


def functions(rows):
    """The source of the functions of all families, and their stubs."""
    families = {}
    for row in rows:
        families.setdefault(row.family, []).append(row)
    code, stubs, table = "", "", {}
    for family, members in families.items():
        positional, keywords, sources, constants, scales, masks, outputs = signature(family, members)
        table[family] = (sources, masks, constants, scales, outputs)
        given = [f"({''.join(f'{name}, ' for name in (sources + masks if sources else ['n']))})",
                 f"({''.join(f'{name}, ' for name in constants)})", "out" if "out=None" in keywords else "None",
                 f"({''.join(f'{name}, ' for name in scales)})", "dtype", "axis" if sources else "None"]
        if family in KINDS:
            given.append("kind")
        doc = textwrap.indent(docstring(family, members, sources), "    ").lstrip()
        code += (f"\n\ndef {family}({', '.join(positional + ['*'] + keywords)}):\n    \"\"\"{doc}\n    \"\"\"\n"
                 f"    return _call(_F[{family!r}], {', '.join(given)})\n")
        stubs += stub(family, members, positional, keywords, outputs)
    return code, stubs, table


def stub(family, rows, positional, keywords, outputs):
    def typed(parameter):
        name, _, default = parameter.partition("=")
        if name == "*":
            return name
        known = {"out": "Out", "dtype": "DTypeLike | None", "axis": "int | None", "kind": "str | int | None",
                 "n": "int"}.get(name)
        if not known:
            array = any(snake(a.name) == name or name in ("src", "src1", "src2", "dividend", "divisor")
                        for row in rows for a in row.arguments if a.role in ("source", "mask", "both"))
            known = ("ArrayLike" if array else "Value") + (" | None" if default == "None" else "")
        return f"{name}: {known}" + (f" = {default}" if default else "")
    reduces = any(a.role == "result" for a in rows[0].arguments)
    one = "Any" if reduces else "NDArray[Any]"
    several = ""
    if len(outputs) > 1:
        fields = "".join(f"    {name}: {one}\n" for name in outputs)
        several, one = f"class _{family}_result(NamedTuple):\n{fields}\n", f"_{family}_result"
    return several + f"def {family}({', '.join(map(typed, positional + ['*'] + keywords))}) -> {one}: ...\n"


def state_table(others):
    """{prefix: {role: {types: name}}} of the operations on states: FIRSR has Init, Release and the run, ''; and
    {prefix: comment}."""
    table, docs = {}, {}
    for operation in others:
        m = re.match(rf"ORVAS_(\w+?)(Init|Release|Get\w*?|Set\w*?)?(?:_?((?:{TYPE}|_)+?)(_I)?)?$", operation.name)
        if not m:
            sys.exit(f"generate.py: no rule for the name {operation.name}")
        table.setdefault(m[1], {}).setdefault((m[2] or "") + (m[4] or ""), {})[(m[3] or "").strip("_")] = operation.name
        docs.setdefault(m[1], operation.comment)
    return table, docs


def statuses(source):
    text = (source / "include" / "signal_tzm" / "status.h").read_text()
    return {int(code): (name, meaning) for name, code, meaning in
            re.findall(r"(ORVA_STS_\w+) = (\d+),?\s*/\*\*< (.*?) \*/", text)}


def main(source, out):
    source, out = pathlib.Path(source), pathlib.Path(out)
    out.mkdir(parents=True, exist_ok=True)
    code, rows, others = read(source)
    with contextlib.redirect_stdout(None):
        extension(code, rows, others).emit_c_code(str(out / "_raw.c"))
    (out / "_raw.c").touch()  # also where nothing in it changed
    families, stubs, table = functions(rows)
    made = "Made by generate.py from the public headers."
    compact = [(row.name, row.family, row.kind, row.allocates, row.placed,
                " ".join(f"{a.role}:{a.type}:{snake(a.name)}" for a in row.arguments if a.role != "length"))
               for row in rows]
    states, docs = state_table(others)
    values = {operation.name: (number, ["" if a.pointer else f"{a.type} *" for a in operation.arguments])
              for number, operation in enumerate(others)}
    version = re.search(r"project\(\w+ VERSION ([\d.]+)", (source / "CMakeLists.txt").read_text())[1]
    (out / "_table.py").write_text(
        f'"""{made}"""\nVERSION = {version!r}\nSTATUSES = {statuses(source)!r}\nFAMILIES = {table!r}\n'
        f"STATES = {states!r}\nOTHERS = {values!r}\nDOCS = {docs!r}\n"
        "OPERATIONS = [\n" + "".join(f"    {row!r},\n" for row in compact) + "]\n")
    names = ", ".join(repr(name) for name in table)
    (out / "_families.py").write_text(
        f'"""{made}"""\nfrom ._call import FAMILIES as _F, call as _call\n\n__all__ = [{names}]\n' + families)
    (out / "_families.pyi").write_text(
        f'"""{made}"""\nfrom typing import Any, NamedTuple, Sequence, SupportsComplex, SupportsFloat, SupportsIndex\n\n'
        "from numpy.typing import ArrayLike, DTypeLike, NDArray\n\n"
        "Value = SupportsIndex | SupportsFloat | SupportsComplex | tuple[int, int]\n"
        "Out = NDArray[Any] | Sequence[NDArray[Any]] | None\n"
        f"__all__ = [{names}]\n\n" + stubs)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__.splitlines()[0])
    main(*sys.argv[1:])
