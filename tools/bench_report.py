#!/usr/bin/env python3
"""Turns the JSON of tools/bench.sh into bench/results.md and a plot (SVG).

Usage: bench_report.py BUILD_DIR RESULTS_MD RESULTS_SVG

BUILD_DIR holds passN-slabs.json (whole suite, our blocks from the stand-in's
slabs), passN-sys.json (our contenders, blocks from malloc), passes.txt (the
load at the start of each pass) and, when tools/bench_callgrind.sh has run,
callgrind-slabs.tsv and callgrind-sys.tsv.  Benchmarks are named
Contender_Operation.  Every figure is the median of the repetitions with
their min-max; a ratio is peer median / our median (above 1: ours is
faster; for MB/s it is our rate / the peer's), and its spread runs from the
least to the most favourable pairing of the repetitions' extremes.
"""
import glob
import json
import os
import platform
import re
import statistics
import subprocess
import sys
from collections import OrderedDict

OURS = ("GL", "EL", "GT", "HSH", "DA", "GENDICT", "RDBDICT", "SL", "GB")
BUILDS = (("slabs", "slabs"), ("sys", "malloc"))

# Figures that the documented algorithm bounds, by operation (and contender).
BOUND = {
    ("TreeRemoveAt", "GT"): "bound: removal by position walks down from the root (nodes have no "
                            "parent links); peers erase through a held iterator",
    ("ArrayAppend", "DAstep1024"): "bound: DA grows by a fixed step, so ~10,000 resizes of the "
                                   "whole block",
    ("TopicAdd", "RDBDICT"): "bound: RDBDICT_add walks both levels, the topics before its own "
                             "and then the topic's keys",
    ("RemovePtr", "HSH"): "bound: removal repairs the run behind the hole by the backward rule",
    ("RemoveRand", "HSH"): "bound: removal repairs the run behind the hole by the backward rule",
}
DENSE_BOUND = ("bound: the home slot is a field of the key's bits; with the shift of the "
               "keys' stride their homes form one solid run")

# The targets of the performance issue: (text, ours, operations, peers, least ratio).
TARGETS = [
    ("GT insert / lookup / removal at least 1.3x GTree", ["GT"],
     ["TreeInsert", "TreeLookup", "TreeRemoveAt"], ["GTree"], 1.3),
    ("GT no slower than std::multiset with the same function pointer", ["GT"],
     ["TreeInsert", "TreeLookup", "TreeRemoveAt"], ["StdMultisetFn"], 1.0),
    ("HSH set / get hit / get miss, pointer keys, at least 2x GHashTable and std::unordered_map",
     ["HSH"], ["SetPtr", "GetHitPtr", "GetMissPtr"], ["GHashTable", "StdUnorderedMap"], 2.0),
    ("GL and EL append / insert / remove at least 1.5x GQueue and std::list", ["GL", "EL"],
     ["Append", "InsertAfterHeld", "RemoveFront"], ["GQueue", "StdList"], 1.5),
    ("GL and EL walks no slower than GQueue and std::list", ["GL", "EL"], ["Walk"],
     ["GQueue", "StdList"], 1.0),
    ("DA append (10^7 int32, warmed memory) within 1.5x of std::vector", ["DA"],
     ["ArrayAppend", "ArrayAppendReuse"], ["StdVector"], 1 / 1.5),
    ("Text form writing and reading at least as fast as cJSON", ["GENDICT"],
     ["TextWrite", "TextRead"], ["CJson"], 1.0),
]
NODE_RECORD = {"GL": 24, "EL": 24, "GT": 48}  # bytes of a node on a 64-bit machine


def is_ours(contender):
    return contender in OURS or contender.startswith("DAstep")


def load(path):
    """name -> {vals: [ns/item or MB/s], rate: bool, bpi, faults}"""
    out = OrderedDict()
    for b in json.load(open(path))["benchmarks"]:
        if b.get("run_type") == "aggregate":
            continue
        name = b["run_name"] if "run_name" in b else b["name"]
        r = out.setdefault(name, {"vals": [], "rate": False, "bpi": None, "faults": []})
        if b.get("bytes_per_second"):
            r["vals"].append(b["bytes_per_second"] / 1e6)
            r["rate"] = True
        elif b.get("items_per_second"):
            r["vals"].append(1e9 / b["items_per_second"])
        if b.get("bytes_per_item"):
            r["bpi"] = max(r["bpi"] or 0, b["bytes_per_item"])
        if "faults_per_item" in b:
            r["faults"].append(b["faults_per_item"])
    return out


def stats(r):
    v = sorted(r["vals"])
    return statistics.median(v), v[0], v[-1]


def fmt(x):
    if x is None:
        return ""
    return f"{x:.3g}" if x < 100 else f"{x:.0f}"


def cell(r):
    if not r or not r["vals"]:
        return ""
    m, lo, hi = stats(r)
    return f"{fmt(m)} [{fmt(lo)}–{fmt(hi)}]"


def ratio(ours, peer):
    """Peer over ours for times, ours over peer for rates; with the spread."""
    if not ours or not peer or not ours["vals"] or not peer["vals"]:
        return None
    om, olo, ohi = stats(ours)
    pm, plo, phi = stats(peer)
    if ours["rate"]:
        return om / pm, olo / phi, ohi / plo
    return pm / om, plo / ohi, phi / olo


def rcell(r):
    return "" if r is None else f"{r[0]:.2f} [{r[1]:.2f}–{r[2]:.2f}]"


def callgrind(path):
    ir = {}
    if os.path.exists(path):
        for line in open(path):
            parts = line.split("\t")
            if len(parts) == 3 and parts[1].strip() and int(parts[2]) > 0:
                ir[parts[0]] = int(parts[1]) / int(parts[2])
    return ir


def machine():
    try:
        cpu = re.search(r"model name\s*:\s*(.*)", open("/proc/cpuinfo").read()).group(1)
    except (OSError, AttributeError):
        cpu = platform.processor()
    try:
        cc = subprocess.run(["c++", "--version"], capture_output=True, text=True).stdout.split("\n")[0]
    except OSError:
        cc = "?"
    return f"{os.cpu_count()} CPUs, {cpu}, {platform.system()} {platform.release()}; {cc}"


def main(src, md_out, svg_out):
    passes = sorted({int(re.search(r"pass(\d+)-", p).group(1))
                     for p in glob.glob(os.path.join(src, "pass*-slabs.json"))})
    runs = {}
    for p in passes:
        for b, _ in BUILDS:
            f = os.path.join(src, f"pass{p}-{b}.json")
            runs[(p, b)] = load(f) if os.path.exists(f) else {}
    ctx = json.load(open(os.path.join(src, f"pass{passes[0]}-slabs.json"))).get("context", {})
    ir = {b: callgrind(os.path.join(src, f"callgrind-{b}.tsv")) for b, _ in BUILDS}
    load_notes = open(os.path.join(src, "passes.txt")).read().strip().splitlines() \
        if os.path.exists(os.path.join(src, "passes.txt")) else []

    # Operations in order of first appearance, with their contenders.
    ops = OrderedDict()
    for name in runs[(passes[0], "slabs")]:
        contender, _, op = name.partition("_")
        ops.setdefault(op, []).append(contender)

    def get(p, b, contender, op):
        return runs.get((p, b), {}).get(f"{contender}_{op}")

    lines = [
        "# Benchmark results", "",
        f"Machine: {machine()}. Google Benchmark: Debian's library (it reports a "
        f"{ctx.get('library_build_type', '?')} build; it runs the timing loop only); "
        f"every benchmark translation unit and both libraries built Release (-O3). "
        f"Date of the first pass: {ctx.get('date', '?')}.", "",
        "Passes (start time and load average; the machine was shared):", "",
    ] + [f"- {n}" for n in load_notes] + [
        "",
        "Method: process CPU time per item, the median of 5 repetitions with [min–max]. "
        "Memory is warmed before any timing: glibc keeps what it has (no mappings of its own, "
        "no trimming) and a large block is touched and freed at start; the slabs are filled "
        "and emptied with the node sizes; the array appends run once outside the clock. So no "
        "contender pays first-touch page faults that another avoids, except where the faults "
        "column (page faults per item inside the timed region) says so: the stand-in's blocks "
        "of 2 MiB and more are mappings of their own, which it keeps, a few, after release for "
        "the next large block (rows measured before it kept them faulted again after each "
        "release, and on a VM the time of a fault can change several-fold between passes). "
        "**slabs**: our blocks from the stand-in's slabs; **malloc**: our blocks from glibc "
        "(`VORN_MM_SYSTEM=ON`, what a host with its own base library gets). Peers run in the "
        "slab build's process; the malloc rows are a second process of the same pass. "
        "Instructions per item: callgrind, at 1/20 of the size (the dictionaries at full size), timed region only "
        "(`tools/bench_callgrind.sh`). At that size the HSH pointer keys (the addresses of one "
        "array of 32-byte objects) show the costs of evenly spaced keys described in "
        "`vorn_hsh.h`, which a million of them escape: their set and miss counts are not those "
        "of the timed workload.", "",
    ]

    # ---- the targets ----
    lines += ["## Targets", "",
              "Ratio = peer time / ours (above 1: ours is faster), median [spread] in each pass. "
              "Met: on the target's side in every pass; 'not stable': the passes fall on both "
              "sides, so no claim is made.", "",
              "| Target | Ours, operation, peer | " +
              " | ".join(f"{bname} pass {p}" for _, bname in BUILDS for p in passes) + " | Met |",
              "|---|---|" + "---|" * (len(passes) * len(BUILDS)) + "---|"]
    for text, ours_list, t_ops, peers, least in TARGETS:
        for o in ours_list:
            for op in t_ops:
                for peer in peers:
                    rs = [ratio(get(p, b, o, op), get(p, "slabs", peer, op))
                          for b, _ in BUILDS for p in passes]
                    if all(r is None for r in rs):
                        continue
                    verdicts = []
                    for k, (_, bname) in enumerate(BUILDS):
                        met = [r[0] >= least for r in rs[k * len(passes):(k + 1) * len(passes)]
                               if r is not None]
                        if met:
                            verdicts.append((bname, "met" if all(met) else "not met" if not any(met)
                                             else "not stable"))
                    words = {v for _, v in verdicts}
                    verdict = (verdicts[0][1] if len(words) == 1
                               else ", ".join(f"{b} {v}" for b, v in verdicts))
                    note = BOUND.get((op, o))
                    if note and verdict != "met":
                        verdict += f" ({note})"
                    shown, text = text, ""  # the target's words on its first row only
                    lines.append(f"| {shown} | {o} {op} vs {peer} | " +
                                 " | ".join(rcell(r) for r in rs) + f" | {verdict} |")
    lines.append(f"| Node memory within 5% of the record | | " +
                 " | ".join("" for _ in range(len(passes) * len(BUILDS))) + " | " + ", ".join(
                     f"{o} {fmt(get(passes[0], 'slabs', o, op)['bpi'])} B/item "
                     f"(record {NODE_RECORD[o]})" for o, op in
                     (("GL", "Append"), ("EL", "Append"), ("GT", "TreeInsert"))
                     if get(passes[0], "slabs", o, op)) + " |")

    # ---- every figure ----
    lines += ["", "## All figures", "",
              "ns per item (MB/s for the text form), median [min–max] per pass.", "",
              "| Operation | Contender | Blocks | " +
              " | ".join(f"pass {p}" for p in passes) +
              " | bytes/item | faults/item | instr/item | Note |",
              "|---|---|---|" + "---|" * len(passes) + "---|---|---|---|"]
    for op, contenders in ops.items():
        if op.startswith("Dense"):
            continue
        for c in contenders:
            builds = BUILDS if is_ours(c) else BUILDS[:1]
            for b, bname in builds:
                rs = [get(p, b, c, op) for p in passes]
                if not any(rs):
                    continue
                first = next(r for r in rs if r)
                faults = statistics.median(first["faults"]) if first["faults"] else None
                i = ir[b].get(f"{c}_{op}")
                lines.append(
                    f"| {op} | {'**' + c + '**' if is_ours(c) else c} | "
                    f"{bname if is_ours(c) else 'malloc'} | " + " | ".join(cell(r) for r in rs) +
                    f" | {fmt(first['bpi'])} | {'' if faults is None else f'{faults:.2g}'} | "
                    f"{'' if i is None else f'{i:.0f}'} | {BOUND.get((op, c), '')} |")

    # ---- ratios ----
    lines += ["", "## Ratios", "", "Peer median / our median [spread], per pass.", "",
              "| Operation | Ours | Peer | " + " | ".join(f"pass {p}" for p in passes) +
              " | Same side of 1 in every pass |",
              "|---|---|---|" + "---|" * len(passes) + "---|"]
    for op, contenders in ops.items():
        peers = [c for c in contenders if not is_ours(c)]
        for o in (c for c in contenders if is_ours(c)):
            for b, bname in BUILDS:
                for peer in peers:
                    rs = [ratio(get(p, b, o, op), get(p, "slabs", peer, op)) for p in passes]
                    if any(r is None for r in rs):
                        continue
                    same = len({r[0] >= 1 for r in rs}) == 1
                    lines.append(f"| {op} | {o} ({bname}) | {peer} | " +
                                 " | ".join(rcell(r) for r in rs) + f" | {'yes' if same else 'no'} |")

    # ---- dense aligned keys ----
    dense = [(op, c) for op, cs in ops.items() if op.startswith("Dense") for c in cs]
    if dense:
        lines += ["", "## HSH, dense aligned keys", "",
                  "300,000 keys base + i*32 (objects of 32 bytes in a row); misses are random "
                  "32-byte aligned words. `m` is the minimum size given to `HSH_create`, `s` the "
                  "shift. ns per key, slab build. " + DENSE_BOUND + ".", "",
                  "| Operation | min size, shift | " + " | ".join(f"pass {p}" for p in passes) +
                  " |", "|---|---|" + "---|" * len(passes)]
        for op, c in dense:
            base, _, conf = op.partition("_")
            lines.append(f"| {base} | {conf} | " +
                         " | ".join(cell(get(p, 'slabs', c, op)) for p in passes) + " |")
    open(md_out, "w").write("\n".join(lines) + "\n")

    # ---- plot: the lower of the passes' ratios, slab build ----
    bars = []
    for op, contenders in ops.items():
        if op.startswith("Dense"):
            continue
        for o in (c for c in contenders if is_ours(c)):
            for peer in (c for c in contenders if not is_ours(c)):
                rs = [ratio(get(p, "slabs", o, op), get(p, "slabs", peer, op)) for p in passes]
                if all(r is not None for r in rs):
                    bars.append((f"{op}: {o} vs {peer}", min(r[0] for r in rs)))
    h, top, left, width = 16, 40, 330, 420
    vmax = max([r for _, r in bars] + [2.0])
    svg = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{left + width + 60}" '
           f'height="{top + h * len(bars) + 30}" font-family="sans-serif" font-size="11">',
           f'<text x="10" y="20" font-size="14">vorn_container speed-up over each peer '
           f'(peer time / ours, the lower of {len(passes)} passes, slab build)</text>']
    x1 = left + width / vmax
    svg.append(f'<line x1="{x1:.1f}" y1="{top - 5}" x2="{x1:.1f}" '
               f'y2="{top + h * len(bars)}" stroke="#c00" stroke-dasharray="3,3"/>')
    for i, (label, r) in enumerate(bars):
        y = top + i * h
        colour = "#2a7" if r >= 1 else "#d73"
        svg.append(f'<text x="{left - 6}" y="{y + 11}" text-anchor="end">{label}</text>')
        svg.append(f'<rect x="{left}" y="{y + 2}" width="{width * r / vmax:.1f}" '
                   f'height="{h - 4}" fill="{colour}"/>')
        svg.append(f'<text x="{left + width * r / vmax + 4:.1f}" y="{y + 11}">{r:.2f}x</text>')
    svg.append("</svg>")
    open(svg_out, "w").write("\n".join(svg) + "\n")
    print(open(md_out).read())


if __name__ == "__main__":
    main(*sys.argv[1:4])
