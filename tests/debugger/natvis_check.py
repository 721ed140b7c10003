# Evaluates the natvis file through gdb on every global record of the
# stopped fixture and compares what it shows with what the gdb printers
# show: the display text (where the printer gives one) and every child, by
# name and rendered value, down nested records.
#
# Run inside gdb after the printers are loaded and the fixture has stopped:
#   python VORN_NATVIS = "path/to/vorn_container.natvis"
#   source natvis_check.py
# The natvis subset understood here is the one the file uses: DisplayString
# and Condition, Item, ArrayItems, IndexListItems ($i), LinkedListItems,
# CustomListItems (Variable, Size, Loop, Break, Exec, Item with a Name), and
# the format specifiers ",s8" (a text) and ",[N]" (N bytes).
import re
import xml.etree.ElementTree as ET

import gdb

NS = "{http://schemas.microsoft.com/vstudio/debugger/natvis/2010}"
STEPS = 100000  # bound of every loop the natvis file runs
printers = __import__("__main__")  # the printers' module, sourced before


class Ctx:
    """Where a natvis expression is evaluated: an object (its members are
    bare names) and the variables of a CustomListItems block."""

    def __init__(self, obj, variables=None):
        self.obj = obj
        self.members = {f.name for f in obj.type.strip_typedefs().fields()}
        self.vars = variables if variables is not None else {}
        gdb.set_convenience_variable("nv_this", obj.address)

    def translate(self, expr, index=None):
        out, prev = [], ""
        for tok in re.findall(r"\$i|->|==|!=|<=|>=|&&|\|\||[A-Za-z_]\w*|\S", expr):
            if tok == "$i":
                tok = str(index)
            elif re.match(r"[A-Za-z_]", tok) and prev not in (".", "->"):
                if tok in self.vars:
                    tok = "$nv_var_" + tok
                elif tok == "this":
                    tok = "(*$nv_this)"
                elif tok in self.members:
                    tok = "$nv_this->" + tok
            out.append(tok)
            prev = tok
        return " ".join(out)

    def eval(self, expr, index=None):
        gdb.set_convenience_variable("nv_this", self.obj.address)
        for name, val in self.vars.items():
            gdb.set_convenience_variable("nv_var_" + name, val)
        text, fmt = split_format(expr)
        val = gdb.parse_and_eval(self.translate(text, index))
        if fmt in ("s8", "s"):
            return '"%s"' % val.string()
        if fmt.startswith("["):
            size = int(self.eval(fmt[1:-1], index))
            addr = int(val.address) if val.type.strip_typedefs().code == gdb.TYPE_CODE_ARRAY \
                else int(val)
            return printers._bytes(addr, size)
        return val

    def truth(self, expr):
        return expr is None or bool(self.eval(expr))

    def format(self, text, index=None):
        """A DisplayString or Name: text with {expr} parts; {{ and }} escape."""
        def part(m):
            if m.group(0) in ("{{", "}}"):
                return m.group(0)[0]
            return render(self.eval(m.group(1), index))
        return re.sub(r"\{\{|\}\}|\{([^{}]*)\}", part, text)


def split_format(expr):
    """'a,s8' -> ('a', 's8'): a format specifier after the last top-level comma."""
    depth = 0
    for i in range(len(expr) - 1, -1, -1):
        c = expr[i]
        if c in ")]":
            depth += 1
        elif c in "([":
            depth -= 1
        elif c == "," and depth == 0:
            return expr[:i].strip(), expr[i + 1:].strip()
    return expr.strip(), ""


def render(x):
    if hasattr(x, "value") and hasattr(x, "length"):  # a lazy string
        return '"%s"' % x.value().string()
    return None if x is None else str(x)


class Stop(Exception):
    """Ends the items of a block: a Break outside a loop, or Size reached."""


class Broken(Exception):
    """A Break inside a loop: ends the innermost loop."""


def custom_items(el, ctx):
    """The items of one CustomListItems block."""
    ctx = Ctx(ctx.obj, {})
    size, items, steps = None, [], [0]
    for child in el:
        tag = child.tag[len(NS):]
        if tag == "Variable":
            ctx.vars[child.get("Name")] = ctx.eval(child.get("InitialValue"))
        elif tag == "Size" and size is None and ctx.truth(child.get("Condition")):
            size = int(ctx.eval(child.text))

    def run(block, in_loop):
        for child in block:
            tag = child.tag[len(NS):]
            if size is not None and len(items) >= size:
                raise Stop
            if tag in ("Variable", "Size") or not ctx.truth(child.get("Condition")):
                continue
            if tag == "Break":
                raise Broken if in_loop else Stop
            if tag == "Exec":
                name, expr = [s.strip() for s in child.text.split("=", 1)]
                ctx.vars[name] = ctx.eval(expr)
            elif tag == "Item":
                name = child.get("Name")
                items.append((ctx.format(name) if name else "[%d]" % len(items),
                              ctx.eval(child.text)))
            elif tag == "Loop":
                try:
                    while True:
                        steps[0] += 1
                        if steps[0] > STEPS:
                            raise Stop
                        run(child, True)
                except Broken:
                    pass
            else:
                raise gdb.GdbError("natvis element %s is not in the checked subset" % tag)
    try:
        run(el, False)
    except Stop:
        pass
    return items


def natvis_view(val, entry):
    """(display text or None, [(name, value)]) as the natvis entry shows val."""
    ctx = Ctx(val)
    text = None
    for ds in entry.findall(NS + "DisplayString"):
        if ctx.truth(ds.get("Condition")):
            text = ctx.format(ds.text)
            break
    items = []
    expand = entry.find(NS + "Expand")
    for el in (expand if expand is not None else []):
        tag = el.tag[len(NS):]
        if not ctx.truth(el.get("Condition")):
            continue
        if tag == "Item":
            items.append((el.get("Name"), ctx.eval(el.text)))
        elif tag in ("ArrayItems", "IndexListItems"):
            n = int(ctx.eval(el.find(NS + "Size").text))
            if tag == "ArrayItems":
                ptr = ctx.eval(el.find(NS + "ValuePointer").text)
                items += [("[%d]" % i, ptr[i]) for i in range(n)]
            else:
                node = el.find(NS + "ValueNode").text
                items += [("[%d]" % i, ctx.eval(node, i)) for i in range(n)]
        elif tag == "LinkedListItems":
            n = int(ctx.eval(el.find(NS + "Size").text))
            node = ctx.eval(el.find(NS + "HeadPointer").text)
            for i in range(min(n, STEPS)):
                if not node:
                    break
                nctx = Ctx(node.dereference())
                items.append(("[%d]" % i, nctx.eval(el.find(NS + "ValueNode").text)))
                node = nctx.eval(el.find(NS + "NextPointer").text)
        elif tag == "CustomListItems":
            items += custom_items(el, ctx)
        else:
            raise gdb.GdbError("natvis element %s is not in the checked subset" % tag)
    return text, items


def printer_view(val):
    p = printers.lookup(val)
    text = render(p.to_string())
    kids = list(p.children()) if hasattr(p, "children") else []
    hint = p.display_hint() if hasattr(p, "display_hint") else None
    if hint == "map":
        items = [("[%s]" % render(kids[i][1]), kids[i + 1][1]) for i in range(0, len(kids), 2)]
    else:
        items = kids
    return text, items


def compare(val, where, entries, problems):
    """Compares one record, then each child that is itself a record."""
    tag = val.type.strip_typedefs().tag
    entry = entries.get(tag)
    if entry is None:
        return 0
    ptext, pitems = printer_view(val)
    ntext, nitems = natvis_view(val, entry)
    if ptext is not None and ptext != ntext:
        problems.append("%s: text %r, natvis %r" % (where, ptext, ntext))
    pk = [(n, render(v)) for n, v in pitems]
    nk = [(n, render(v)) for n, v in nitems]
    if pk != nk:
        problems.append("%s: items %r, natvis %r" % (where, pk, nk))
    count = 1
    for name, v in nitems:
        if isinstance(v, gdb.Value) and v.type.strip_typedefs().code == gdb.TYPE_CODE_STRUCT:
            count += compare(v, "%s %s" % (where, name), entries, problems)
    return count


def check(natvis_path):
    root = ET.parse(natvis_path).getroot()
    entries = {t.get("Name"): t for t in root.findall(NS + "Type")}
    block = gdb.lookup_global_symbol("main").symtab.global_block()
    checked = 0
    problems = []
    for sym in sorted(block, key=lambda s: s.name):
        if not sym.is_variable:
            continue
        val = sym.value()
        if val.type.strip_typedefs().code == gdb.TYPE_CODE_PTR:
            if not val:
                continue
            val = val.dereference()
        if val.type.strip_typedefs().tag not in entries:
            continue
        checked += compare(val, sym.name, entries, problems)
        gdb.write("checked %s\n" % sym.name)
    for p in problems:
        gdb.write("MISMATCH %s\n" % p)
    gdb.write("natvis and printers %s on %d records\n"
              % ("disagree" if problems else "agree", checked))


check(VORN_NATVIS)  # noqa: F821 (set by the caller)
