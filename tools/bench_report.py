#!/usr/bin/env python3
"""Turns the benchmark JSON into a results table (Markdown) and a plot (SVG).

Benchmarks are named Contender_Operation; contenders whose name starts with
one of our family prefixes are ours.  For each operation the table gives the
time per item of every contender and each peer's time divided by ours (above
1: we are faster; one ratio per contender of ours when there are several), and bytes per item where measured.
"""
import json
import sys
from collections import OrderedDict

OURS = ("GL", "EL", "GT", "HSH", "DA", "GENDICT", "RDBDICT", "SL", "GB")


def is_ours(name):
    return name.split("_")[0] in OURS


def main(src, md_out, svg_out):
    data = json.load(open(src))
    ctx = data.get("context", {})
    ops = OrderedDict()
    for b in data["benchmarks"]:
        if b.get("run_type") == "aggregate":
            continue
        name = b["name"].split("/")[0]
        contender, _, op = name.partition("_")
        ips = b.get("items_per_second")
        ns = 1e9 / ips if ips else None
        mbs = b.get("bytes_per_second")
        ops.setdefault(op, OrderedDict())[contender] = {
            "ns": ns, "mbs": mbs / 1e6 if mbs else None, "bpi": b.get("bytes_per_item") or None,
            "ours": is_ours(name)}

    lines = ["# Benchmark results", "",
             f"Machine: {ctx.get('num_cpus', '?')} CPUs at {ctx.get('mhz_per_cpu', '?')} MHz, "
             f"{ctx.get('host_name', '')}, {ctx.get('date', '')}; vorn_container built Release "
             f"(Google Benchmark's own library: {ctx.get('library_build_type', '?')} build).", "",
             "Time per item (ns, lower is better), or MB/s for the text form (higher is better); "
             "ratio = peer time / our time (above 1: ours is faster).", "",
             "| Operation | Contender | ns/item | MB/s | bytes/item | ratio |",
             "|---|---|---:|---:|---:|---:|"]
    bars = []
    for op, cs in ops.items():
        ours_all = [(c, v) for c, v in cs.items() if v["ours"]]
        for c, v in cs.items():
            ratios = []
            if not v["ours"]:
                for oc, ov in ours_all:
                    r = None
                    if v["ns"] and ov["ns"]:
                        r = v["ns"] / ov["ns"]
                    elif v["mbs"] and ov["mbs"]:
                        r = ov["mbs"] / v["mbs"]
                    if r is not None:
                        ratios.append(f"{r:.2f}" + (f" ({oc})" if len(ours_all) > 1 else ""))
                        bars.append((f"{op}: {oc} vs {c}", r))
            ratio = " / ".join(ratios)
            fmt = lambda x, f: (f % x) if x is not None else ""
            lines.append(f"| {op} | {'**' + c + '**' if v['ours'] else c} | "
                         f"{fmt(v['ns'], '%.2f')} | {fmt(v['mbs'], '%.1f')} | "
                         f"{fmt(v['bpi'], '%.1f')} | {ratio} |")
    open(md_out, "w").write("\n".join(lines) + "\n")

    # Horizontal bars: how many times faster ours is than each peer.
    h, top, left, width = 16, 40, 330, 420
    vmax = max([r for _, r in bars] + [2.0])
    svg = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{left + width + 60}" '
           f'height="{top + h * len(bars) + 30}" font-family="sans-serif" font-size="11">',
           f'<text x="10" y="20" font-size="14">vorn_container speed-up over each peer '
           f'(peer time / our time)</text>']
    x1 = left + width / vmax
    svg.append(f'<line x1="{x1:.1f}" y1="{top - 5}" x2="{x1:.1f}" '
               f'y2="{top + h * len(bars)}" stroke="#c00" stroke-dasharray="3,3"/>')
    for i, (label, r) in enumerate(bars):
        y = top + i * h
        colour = "#2a7" if r >= 1 else "#d73"
        svg.append(f'<text x="{left - 6}" y="{y + 11}" text-anchor="end">{label}</text>')
        svg.append(f'<rect x="{left}" y="{y + 2}" width="{width * r / vmax:.1f}" height="{h - 4}" '
                   f'fill="{colour}"/>')
        svg.append(f'<text x="{left + width * r / vmax + 4:.1f}" y="{y + 11}">{r:.2f}x</text>')
    svg.append("</svg>")
    open(svg_out, "w").write("\n".join(svg) + "\n")
    print(open(md_out).read())


if __name__ == "__main__":
    main(*sys.argv[1:4])
