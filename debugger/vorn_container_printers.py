# gdb pretty-printers and commands for vorn_container.
#
# Installed as <libdir>/libvorn_container.so.X.Y.Z-gdb.py (or under
# share/gdb/auto-load), gdb loads this file with the library.  To load it by
# hand:  (gdb) source /path/to/vorn_container_printers.py
#
# What `print` shows:
#   GL_list, EL_list (DBLL lists and ES stacks too), SL_list, GB_list,
#   DA_array    the items in order; EL, GB and DA elements as bytes, or as
#               the type named for their size (vorn-element-type; 8-byte
#               elements show as doubles until told otherwise)
#   GT_tree     the items along the sorted chain, then the open iterators
#   GT_iter     the item words at which the iterator stands and goes next
#   HSH_table   key -> value; vorn_lu the slot and its table; io_lut_table
#               identifier -> pointer (read) or pointer -> identifier (write)
#   GENDICT_value, GENDICT_item   typed values, sub-dictionaries nested
#   CLUT_colour rgb(r, g, b)
# Commands:
#   vorn-items EXPR TYPE        a container's item words (or elements) as TYPE
#   vorn-dict EXPR              an SL_list handle shown as a dictionary
#   vorn-element-type [SIZE [TYPE|bytes]]   the type of SIZE-byte elements
#   vorn-clut [all]             the process-wide colour table
#
# Every walk is bounded: a list walk stops after `count` items, and every
# walk remembers the nodes it has seen (and beyond that runs Brent's cycle
# test), so a cycle or a count that disagrees with the links shows a
# "<corrupt: ...>" marker instead of hanging gdb.  Only what gdb prints is
# walked: children are produced lazily, so `set print elements` bounds the
# work on a long container.

import gdb

SEEN_LIMIT = 100000  # nodes remembered by address for exact cycle reports
SCAN_LIMIT = 1 << 26  # slots a table scan looks at, even where few are in use

# ---------------------------------------------------------------- helpers


def _plural(n, word):
    return "%d %s%s" % (n, word, "" if n == 1 else "s")


def _mark(text):
    return "<corrupt: %s>" % text


def _type_of(name):
    """The gdb type for a C type expression such as 'struct point' or 'int *'."""
    try:
        return gdb.parse_and_eval("(%s *)0" % name).type.target()
    except gdb.error:
        raise gdb.GdbError("vorn: no type %r" % name)


def _word_type():
    return gdb.lookup_type("void").pointer()


def _print_limit():
    n = gdb.parameter("print elements")
    return n if n else 1 << 30


def _where(addr, seen):
    return "item %d" % seen[addr] if addr in seen else "a node off the list"


def _walk(first, next_of, count=None, last=None, ring=False, prev_of=None):
    """Follows links from `first`.  Yields nodes, then strings: corruption
    markers, after which no node comes.  With a count the walk takes exactly `count`
    nodes and then checks that the last one is `last` and links on as an
    open list (null) or a ring (`first`) should.  Without a count it ends at
    a null link, which must come after `last`."""
    if count is not None and count < 0:
        yield _mark("negative count %d" % count)
        return
    seen = {}
    tortoise, power, steps = None, 1, 0
    node, before, i = first, None, 0
    prev_bad = None
    while count is None or i < count:
        if not node:
            if count is None:
                break
            yield _mark("the links end after %s of %d" % (_plural(i, "item"), count))
            return
        addr = int(node)
        if addr in seen:
            yield _mark("item %d links back to item %d" % (i - 1, seen[addr]))
            return
        if len(seen) < SEEN_LIMIT:
            seen[addr] = i
        else:  # Brent: the tortoise jumps to the hare at powers of two
            if addr == tortoise:
                yield _mark("the links run in a cycle beyond item %d" % SEEN_LIMIT)
                return
            steps += 1
            if steps == power:
                tortoise, power, steps = addr, power * 2, 0
        if prev_of is not None and prev_bad is None:
            want = int(before) if before is not None else (int(last) if ring and last else 0)
            if int(prev_of(node)) != want:
                prev_bad = i
        yield node
        before, node, i = node, next_of(node), i + 1
    if prev_bad is not None:
        yield _mark("item %d does not link back to its neighbour" % prev_bad)
    if last is None:
        return
    tail = int(before) if before is not None else 0
    if tail != int(last):
        yield _mark("the walk ended at item %d, which is not last" % (i - 1) if i else
                    "first is null but last is set")
    elif count is not None and tail:
        after = int(node) if node else 0
        if ring and after != int(first):
            yield _mark("the ring does not close: last links on to %s" % _where(after, seen))
        elif not ring and after:
            yield _mark("last links on to %s on an open list" % _where(after, seen))


# Display types named by the caller: element size -> type name (EL, GB,
# DA), and one-shot overrides keyed by a container's address (vorn-items,
# vorn-dict).
element_types = {8: "double"}
_override = {}


def _element(addr, size, typ=None):
    """The element of `size` bytes at `addr`: as `typ`, as the type named for
    its size, or as its bytes."""
    if typ is None and size in element_types:
        typ = _type_of(element_types[size])
    if typ is not None:
        return gdb.Value(addr).cast(typ.pointer()).dereference()
    return _bytes(addr, size)


def _bytes(addr, size):
    """The bytes at `addr` as text, as many as `print elements` allows."""
    shown = min(size, _print_limit())
    data = bytes(gdb.selected_inferior().read_memory(addr, shown))
    return "{%s%s}" % (", ".join("0x%02x" % b for b in data), ", ..." if shown < size else "")


def _as_type(word, typ):
    """An item word as `typ`: a scalar or pointer type no wider than a word
    takes the word's own bits; any other type is what the word points to."""
    t = typ.strip_typedefs()
    if t.code not in (gdb.TYPE_CODE_STRUCT, gdb.TYPE_CODE_UNION, gdb.TYPE_CODE_ARRAY) \
            and t.sizeof <= word.type.sizeof:
        if t.code == gdb.TYPE_CODE_PTR:
            return word.cast(typ)
        if t.code == gdb.TYPE_CODE_FLT:
            raw = int(word.cast(gdb.lookup_type("unsigned long long" if word.type.sizeof == 8
                                                else "unsigned int")))
            data = raw.to_bytes(word.type.sizeof, "little")[:t.sizeof]
            return gdb.Value(data, typ)
        return word.cast(gdb.lookup_type("long long")).cast(typ)
    return word.cast(typ.pointer()).dereference()


def _word(word, typ):
    return _as_type(word, typ) if typ is not None else word


def _view(val):
    """The one-shot display type or view for the record `val`, if any."""
    return _override.get(int(val.address)) if val.address is not None else None


# ------------------------------------------------------------ the lists


class _Printer:
    """A container's printer: its record and the one-shot display type."""

    def __init__(self, val):
        self.val = val
        self.typ = _view(val)


class ListPrinter(_Printer):
    """GL_list, EL_list and SL_list: heads with first, last and count."""

    def __init__(self, val, family):
        super().__init__(val)
        self.family = family

    def _ring(self):
        return self.family != "GL" and int(self.val["closed"]) != 0

    def to_string(self):
        v = self.val
        text = "%s_list, count %d" % (self.family, int(v["count"]))
        if self.family == "EL":
            text += ", item size %d" % int(v["item_size"])
        if self._ring():
            text += ", closed"
        return text

    def children(self):
        v = self.val
        count = int(v["count"])
        if count == 0 and (v["first"] or v["last"]):
            yield "[0]", _mark("count 0 but first or last is set")
            return
        if self.family == "SL":  # a record begins with its two links
            links = _word_type().pointer()
            nodes = _walk(v["first"], lambda n: n.cast(links)[1], count, v["last"],
                          self._ring(), lambda n: n.cast(links)[0])
        else:
            nodes = _walk(v["first"], lambda n: n["next"], count, v["last"], self._ring(),
                          lambda n: n["prev"])
        size = int(v["item_size"]) if self.family == "EL" else 0
        for i, node in enumerate(nodes):
            if isinstance(node, str):
                yield "[%d]" % i, node
            elif self.family == "GL":
                yield "[%d]" % i, _word(node["item"], self.typ)
            elif self.family == "EL":
                yield "[%d]" % i, _element(int(node.dereference()["item"].address), size,
                                           self.typ)
            else:
                yield "[%d]" % i, _word(node, self.typ)

    def display_hint(self):
        return "array"


class BlockPrinter(_Printer):
    """GB_list and DA_array: items side by side in one block."""

    def __init__(self, val, family):
        super().__init__(val)
        self.family = family
        if family == "GB":
            self.count, self.cap = int(val["count"]), int(val["capacity"])
        else:
            self.count, self.cap = int(val["nitems"]), int(val["nalloc"])
        self.size = int(val["item_size"])

    def to_string(self):
        text = "%s, count %d, item size %d, capacity %d" % (
            "GB_list" if self.family == "GB" else "DA_array", self.count, self.size, self.cap)
        if self.family == "GB" and int(self.val["closed"]):
            text += ", closed"
        return text

    def children(self):
        data = int(self.val["data"])
        n = self.count
        if self.cap == 0:  # no block: a GB record after GB_release keeps its count
            return
        if n < 0 or n > self.cap or (n and not data) or self.size <= 0:
            yield "[0]", _mark("count %d, capacity %d, item size %d, data 0x%x"
                               % (n, self.cap, self.size, data))
            return
        for i in range(n):
            yield "[%d]" % i, _element(data + i * self.size, self.size, self.typ)

    def display_hint(self):
        return "array"


# ------------------------------------------------------------- the tree

def _gt_iterators(tree):
    lst = tree["iterators"]
    if not lst:
        return []
    lst = lst.dereference()
    return _walk(lst["first"], lambda n: n["next"], int(lst["count"]), lst["last"])


class GTTreePrinter(_Printer):
    def to_string(self):
        v = self.val
        return "GT_tree, %s, open iterators %d" % (
            "duplicates allowed" if int(v["dupl_allowed"]) else "unique items",
            int(v["iterators"]["count"]) if v["iterators"] else 0)

    def children(self):
        v = self.val
        if (not v["first"]) != (not v["root"]) or (not v["first"]) != (not v["last"]):
            yield "[0]", _mark("root, first and last are not null together")
            return
        for i, node in enumerate(_walk(v["first"], lambda n: n["next"], None, v["last"],
                                       False, lambda n: n["prev"])):
            if isinstance(node, str):
                yield "[%d]" % i, node
                return
            yield "[%d]" % i, _word(node["item"], self.typ)
        itype = gdb.lookup_type("GT_iter").pointer()
        for k, node in enumerate(_gt_iterators(v)):
            if isinstance(node, str):
                yield "iterators", node
                return
            yield "iterator %d" % k, node["item"].cast(itype).dereference()


class GTIterPrinter:
    def __init__(self, val):
        self.val = val

    def to_string(self):
        v = self.val
        if not v["tree"]:
            return "GT_iter orphaned"

        def item(node):
            return str(node["item"]) if node else "none"
        return "GT_iter current %s, next %s" % (item(v["current"]), item(v["next"]))


# ------------------------------------------------------------ the lookups


def _hsh_entries(table):
    """(key, value) pairs of an HSH table in slot order; a string marks
    corruption."""
    size, mask = int(table["size"]), int(table["mask"])
    if size <= 0 or size & (size - 1) or mask != size - 1 or size > SCAN_LIMIT:
        yield _mark("size %d with mask 0x%x" % (size, mask))
        return
    keys, values = table["keys"], table["values"]
    psize = keys.type.target().sizeof
    inferior = gdb.selected_inferior()
    found, chunk = 0, 4096
    for base in range(0, size, chunk):
        n = min(chunk, size - base)
        raw = bytes(inferior.read_memory(int(keys) + base * psize, n * psize))
        for j in range(n):
            if int.from_bytes(raw[j * psize:(j + 1) * psize], "little"):
                found += 1
                yield keys[base + j], values[base + j]
    if found != int(table["count"]):
        yield _mark("count %d but %d keys in the slots" % (int(table["count"]), found))


class _MapPrinter(_Printer):
    """Key -> value children from self.pairs(): (key, value) tuples, then
    at most one corruption marker."""

    def children(self):
        for i, pair in enumerate(self.pairs()):
            if isinstance(pair, str):
                yield "[%d]" % (2 * i), "<corrupt>"
                yield "[%d]" % (2 * i + 1), pair[len("<corrupt: "):-1]
                return
            yield "[%d]" % (2 * i), pair[0]
            yield "[%d]" % (2 * i + 1), pair[1]

    def display_hint(self):
        return "map"

    def _table(self, table, key_as=None):
        """The entries of an HSH table, the words shown as the display type
        (values, or keys when `key_as` says so)."""
        for pair in _hsh_entries(table):
            if isinstance(pair, str) or self.typ is None:
                yield pair
            elif key_as:
                yield _as_type(pair[0], self.typ), pair[1]
            else:
                yield pair[0], _as_type(pair[1], self.typ)


class HSHPrinter(_MapPrinter):
    def to_string(self):
        return "HSH_table, count %d, size %d" % (int(self.val["count"]), int(self.val["size"]))

    def pairs(self):
        return self._table(self.val)


class LUPrinter(_MapPrinter):
    def to_string(self):
        v = self.val
        table = v["table"]
        n = int(table["count"]) if table else 0
        if v["last_key"]:
            slot = "last [%s] = %s" % (v["last_key"], _word(v["last_value"], self.typ))
        else:
            slot = "slot empty"
        return "vorn_lu, %s, table count %d" % (slot, n)

    def pairs(self):
        table = self.val["table"]
        return self._table(table.dereference()) if table else iter(())


class IOLutPrinter(_MapPrinter):
    def to_string(self):
        v = self.val
        if v["pointers"]:
            text = "io_lut read table, nitems %d" % int(v["pointers"]["nitems"])
            return text + (", overwrite" if int(v["overwrite"]) else "")
        if v["identifiers"]:
            return "io_lut write table, count %d, next identifier %d" % (
                int(v["identifiers"]["count"]), int(v["next_id"]))
        return "io_lut table without pointers or identifiers"

    def pairs(self):
        v = self.val
        if v["pointers"]:  # identifier -> pointer, holes left out
            arr = v["pointers"].dereference()
            n = int(arr["nitems"])
            if n > int(arr["nalloc"]) or n > SCAN_LIMIT or (n and not arr["data"]):
                yield _mark("nitems %d, nalloc %d" % (n, int(arr["nalloc"])))
                return
            slots = arr["data"].cast(_word_type().pointer())
            for i in range(1, n):
                if slots[i]:
                    yield i, _word(slots[i], self.typ)
        elif v["identifiers"]:  # pointer -> identifier
            ident = gdb.lookup_type("int")
            for pair in self._table(v["identifiers"].dereference(), key_as=True):
                if isinstance(pair, str):
                    yield pair
                else:
                    yield pair[0], pair[1].cast(gdb.lookup_type("long")).cast(ident)


# ------------------------------------------------------------ dictionaries

_KINDS = {1: "integer", 2: "real", 3: "text", 4: "dict"}


def _text(ptr):
    return ptr.lazy_string() if ptr else "<null>"


class DictPrinter(_MapPrinter):
    """The entries of a dictionary (an SL_list of GENDICT_item records) as
    key -> typed value; sub-dictionaries nest."""

    def to_string(self):
        return "dictionary, count %d" % int(self.val["count"])

    def pairs(self):
        h = self.val
        item = gdb.lookup_type("GENDICT_item").pointer()
        first, last = h["first"].cast(item), h["last"].cast(item)
        for node in _walk(first, lambda n: n["next"], int(h["count"]), last,
                          int(h["closed"]) != 0, lambda n: n["prev"]):
            yield node if isinstance(node, str) else (_text(node["key"]), node["value"])


class ValuePrinter:
    def __init__(self, val):
        self.val = val
        kind = int(val["kind"])
        self.dict = None
        if kind == 4 and val["data"]["dict"]:
            self.dict = DictPrinter(val["data"]["dict"].dereference())

    def to_string(self):
        v = self.val
        kind = int(v["kind"])
        if self.dict:
            return self.dict.to_string()
        if kind == 1:
            return v["data"]["integer"]
        if kind == 2:
            return v["data"]["real"]
        if kind == 3:
            return _text(v["data"]["text"])
        if kind == 4:
            return "<null dictionary>"
        return "<kind %d, no value>" % kind

    def children(self):
        return self.dict.children() if self.dict else iter(())

    def display_hint(self):
        return self.dict.display_hint() if self.dict else None


class ItemPrinter:
    """One dictionary entry: key = value."""

    def __init__(self, val):
        self.val = val

    def to_string(self):
        return None

    def children(self):
        yield "key", _text(self.val["key"])
        yield "value", self.val["value"]


class ColourPrinter:
    def __init__(self, val):
        self.val = val

    def to_string(self):
        v = self.val
        return "rgb(%d, %d, %d)" % (int(v["r"]), int(v["g"]), int(v["b"]))


# ------------------------------------------------------------ lookup


def _sl_printer(val):
    if _view(val) == "dict":
        return DictPrinter(val)
    return ListPrinter(val, "SL")


_PRINTERS = {
    "GL_list": lambda v: ListPrinter(v, "GL"),
    "EL_list": lambda v: ListPrinter(v, "EL"),
    "SL_list": _sl_printer,
    "GB_list": lambda v: BlockPrinter(v, "GB"),
    "DA_array": lambda v: BlockPrinter(v, "DA"),
    "GT_tree": GTTreePrinter,
    "GT_iter": GTIterPrinter,
    "HSH_table": HSHPrinter,
    "vorn_lu": LUPrinter,
    "io_lut_table": IOLutPrinter,
    "GENDICT_value": ValuePrinter,
    "GENDICT_item": ItemPrinter,
    "CLUT_colour": ColourPrinter,
}


def lookup(val):
    t = val.type.strip_typedefs().unqualified()
    if t.code != gdb.TYPE_CODE_STRUCT:
        return None
    make = _PRINTERS.get(t.tag or t.name)
    return make(val) if make else None


# ------------------------------------------------------------ commands


_CONTAINERS = {"GL_list", "EL_list", "SL_list", "GB_list", "DA_array", "GT_tree", "HSH_table",
               "vorn_lu", "io_lut_table"}


def _record(expr):
    """The container an expression names, through one level of pointer."""
    val = gdb.parse_and_eval(expr)
    if val.type.strip_typedefs().code == gdb.TYPE_CODE_PTR:
        if not val:
            raise gdb.GdbError("vorn: %s is null" % expr)
        val = val.dereference()
    t = val.type.strip_typedefs().unqualified()
    if t.code != gdb.TYPE_CODE_STRUCT or (t.tag or t.name) not in _CONTAINERS:
        raise gdb.GdbError("vorn: %s is not a container" % expr)
    return val


def _print_as(val, view):
    addr = int(val.address)
    _override[addr] = view
    try:
        gdb.execute("print *(%s *)0x%x" % (val.type.unqualified(), addr))
    finally:
        _override.pop(addr, None)


class ItemsCommand(gdb.Command):
    """Print a container's item words, or its elements, as the type given.
Usage: vorn-items EXPR TYPE   (quote a TYPE of several words: 'struct point')
A scalar or pointer TYPE no wider than a word shows the word's own bits;
any other TYPE is what the word points to.  EL, GB and DA elements are
their bytes read as TYPE; SL records are the records themselves."""

    def __init__(self):
        super().__init__("vorn-items", gdb.COMMAND_DATA, gdb.COMPLETE_EXPRESSION)

    def invoke(self, arg, from_tty):
        argv = gdb.string_to_argv(arg)
        if len(argv) != 2:
            raise gdb.GdbError("usage: vorn-items EXPR TYPE")
        val, typ = _record(argv[0]), _type_of(argv[1])
        tag = val.type.strip_typedefs().tag
        if tag in ("EL_list", "GB_list", "DA_array") and typ.sizeof > int(val["item_size"]):
            raise gdb.GdbError("vorn: %s is wider than the %d-byte elements"
                               % (argv[1], int(val["item_size"])))
        _print_as(val, typ)


class DictCommand(gdb.Command):
    """Print an SL_list handle as a dictionary (GENDICT, RDBDICT).
Usage: vorn-dict EXPR"""

    def __init__(self):
        super().__init__("vorn-dict", gdb.COMMAND_DATA, gdb.COMPLETE_EXPRESSION)

    def invoke(self, arg, from_tty):
        val = _record(arg)
        if val.type.strip_typedefs().tag != "SL_list":
            raise gdb.GdbError("vorn: a dictionary handle is an SL_list")
        _print_as(val, "dict")


class ElementTypeCommand(gdb.Command):
    """Name the type that EL, GB and DA elements of a size are shown as.
Usage: vorn-element-type SIZE TYPE    elements of SIZE bytes as TYPE
       vorn-element-type SIZE bytes   elements of SIZE bytes as bytes
       vorn-element-type              list the sizes with a type
8-byte elements show as double (the lists of doubles) until told otherwise."""

    def __init__(self):
        super().__init__("vorn-element-type", gdb.COMMAND_DATA)

    def invoke(self, arg, from_tty):
        argv = gdb.string_to_argv(arg)
        if not argv:
            for size in sorted(element_types):
                gdb.write("%d bytes: %s\n" % (size, element_types[size]))
            return
        if len(argv) != 2 or not argv[0].isdigit():
            raise gdb.GdbError("usage: vorn-element-type [SIZE TYPE|bytes]")
        size = int(argv[0])
        if argv[1] == "bytes":
            element_types.pop(size, None)
            return
        if _type_of(argv[1]).sizeof > size:
            raise gdb.GdbError("vorn: %s is wider than %d bytes" % (argv[1], size))
        element_types[size] = argv[1]


GE_NAMES = (
    "GE_WHITE GE_CLEAR GE_BLACK GE_OBJ_SELECTABLE GE_OBJ_RED_SELECTED GE_OBJ_GREEN_SELECTED "
    "GE_OBJ_BLUE_SELECTED GE_OBJ_LOCKED GE_OBJ_CLIPMASK GE_OBJ_CROSSHAIR_GUIDES GE_OBJ_NOTES "
    "GE_OBJ_PAGE GE_OBJ_MARKUP GE_OBJ_GRIDS GE_GRAY GE_LGRAY GE_YELLOW GE_DRKGRAY GE_BLUE GE_RED "
    "GE_LRED GE_GREEN GE_CYAN GE_MAG GE_DRKGREEN GE_DRKMAG GE_DRKBLU GE_SYS32 GE_GRAY144 "
    "GE_GRAY164 GE_DRKCYAN GE_SELECTION_BLUE GE_WINDOWS_COLOR_HIGHLIGHT "
    "GE_WINDOWS_COLOR_HIGHLIGHTTEXT").split()
_STATES = {0: "free", 1: "hard", 2: "dynamic"}


class ClutCommand(gdb.Command):
    """Print the colour table: every claimed index with its state, colour and
GE_ names.  Usage: vorn-clut [all]   (all: free indices too)"""

    def __init__(self):
        super().__init__("vorn-clut", gdb.COMMAND_DATA)

    def invoke(self, arg, from_tty):
        def word(name):
            return gdb.parse_and_eval("'vorn::clut::%s'" % name)
        try:
            size, state, colours = int(word("clut_size")), word("clut_state"), word("clut_colours")
        except gdb.error:
            raise gdb.GdbError("vorn: the colour table's symbols are not loaded")
        if not int(word("clut_initialised")) or not colours:
            gdb.write("colour table: not created\n")
            return
        names = {}
        for name in GE_NAMES:
            try:
                names.setdefault(int(gdb.parse_and_eval(name)), []).append(name)
            except gdb.error:
                pass
        counts = [0, 0, 0]
        lines = []
        for i in range(size):
            s = int(state[i])
            counts[s if s in (0, 1, 2) else 0] += 1
            if s != 0 or arg.strip() == "all":
                c = colours[i]
                rgb = (int(c["r"]), int(c["g"]), int(c["b"]))
                lines.append("%5s %-7s %3d %3d %3d %s\n" % (
                    ("[%d]" % i, _STATES.get(s, "state %d" % s)) + rgb
                    + (" ".join(names.get(i, [])),)))
        gdb.write("colour table: %d entries, %d hard, %d dynamic, hard claims %s\n" % (
            size, counts[1], counts[2], "open" if int(word("clut_hard_open")) else "closed"))
        for line in lines:
            gdb.write(line.rstrip() + "\n")


def register(objfile=None):
    """Adds the printers to `objfile` (or to gdb as a whole) and the
    commands to gdb, once."""
    # A second copy (sourced by hand beside the auto-loaded one) stays out:
    # the commands and the printers must share one set of display types.
    if getattr(gdb, "_vorn_container_printers", False):
        return
    gdb._vorn_container_printers = True
    (objfile if objfile is not None else gdb).pretty_printers.append(lookup)
    ItemsCommand()
    DictCommand()
    ElementTypeCommand()
    ClutCommand()


register(gdb.current_objfile())
