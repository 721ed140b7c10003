#!/usr/bin/env python3
"""Mutation testing of the container library.

Picks a fixed, seeded set of mutants of the library's sources (frame/,
sequences/, tree/, arrays/, lookup/, colour/, dictionary/), builds each
mutant of libvorn_container once in a dedicated build (RelWithDebInfo, no
sanitizers) and keeps the built library, then runs one or more test suites
against every kept mutant with a per-mutant timeout.  A mutant is killed when
a suite's binary fails, crashes or times out; it survives when every binary
passes.  Results are kept per suite, so a run can stop and resume, and a
suite added later runs against exactly the same mutants.

Operators: a negated comparison (== !=, < >=, > <=), a shifted boundary
(< <=, > >=), a dropped "+ 1" / "- 1", a dropped statement, a swapped branch
(if (c) -> if (!(c))), a changed integer constant (0 -> 1, 1 -> 0, n -> n+1)
and a swapped logical operator (&& ||).

  tools/mutate.py [--work build/mutate] [--seed 17] [--count 360]
                  [--suite NAME=BUILD_DIR ...] [--per-case NAME] [--report]

With --per-case NAME, each case of suite NAME's tests/vorn_tests also runs
alone against every kept mutant, and the report names the cases that kill
no mutant that another case does not kill too: where trimming may start.

WORK holds a copy of the sources (src/, made from the repository's HEAD when
missing), their build (build/), the built mutants (mutants/) and the results.
Without --suite the tests of src/ are built in build/ and form suite "tests".
A suite is a build directory with tests/vorn_tests (run whole) and, when
present, tests/vorn_process_tests (each case in a process of its own); it
must be built RelWithDebInfo against an ABI-identical library: the mutant
library is loaded through LD_LIBRARY_PATH (the binaries carry RUNPATH).
"""
import argparse
import hashlib
import json
import os
import random
import re
import shutil
import subprocess
import sys

LIB_DIRS = ["frame", "sequences", "tree", "arrays", "lookup", "colour", "dictionary"]
LIB_NAME = "libvorn_container.so.0"
BASE_NAME = "libVornBaseShared.so.0"

NEGATE = {"==": "!=", "!=": "==", "<": ">=", ">=": "<", ">": "<=", "<=": ">"}
BOUNDARY = {"<": "<=", "<=": "<", ">": ">=", ">=": ">"}
CMP_RE = re.compile(r"(?<=[\w\)\]]) (==|!=|<=|>=|<|>) (?=[\w\(!\-\*&])")
PLUS1_RE = re.compile(r" [+-] 1(?![\w.])")
LOGIC_RE = re.compile(r" (&&|\|\|) ")
INT_RE = re.compile(r"(?<![\w.])(\d+)(?![\w.'])")
IF_RE = re.compile(r"\bif \(")
STMT_RE = re.compile(
    r"^\s*(?!return\b|break\b|continue\b|case\b|default\b|goto\b|else\b|do\b)"
    r"(?:[\w\.\->\[\]\*\(\)]+\s*(?:=|\+=|-=|\*=|/=|\|=|&=|\^=|<<=|>>=)\s*[^=].*"
    r"|[\w\.\->\[\]\*]+\s*(?:\+\+|--)\s*"
    r"|(?:\+\+|--)[\w\.\->\[\]\*]+\s*"
    r"|[\w:\.\->]+\(.*\)\s*);\s*$")


def masked(lines):
    """Each line with comments, string and char literals blanked out (same
    length), so that operators are only sought in code."""
    out, in_block = [], False
    for line in lines:
        chars, i, n = list(line), 0, len(line)
        while i < n:
            if in_block:
                if line.startswith("*/", i):
                    chars[i] = chars[i + 1] = " "
                    in_block, i = False, i + 2
                    continue
                chars[i] = " "
                i += 1
            elif line.startswith("/*", i):
                in_block = True
                chars[i] = chars[i + 1] = " "
                i += 2
            elif line.startswith("//", i):
                for j in range(i, n):
                    if chars[j] != "\n":
                        chars[j] = " "
                break
            elif line[i] in "\"'":
                q, j = line[i], i + 1
                while j < n and line[j] != q:
                    j += 2 if line[j] == "\\" else 1
                for k in range(i + 1, min(j, n)):
                    chars[k] = "_"
                i = j + 1
            else:
                i += 1
        out.append("".join(chars))
    return out


def close_paren(text, start):
    depth = 0
    for i in range(start, len(text)):
        if text[i] == "(":
            depth += 1
        elif text[i] == ")":
            depth -= 1
            if depth == 0:
                return i
    return -1


def sites(path, rel):
    """Every candidate mutation of one file: (operator, line, col, old, new)."""
    with open(path, encoding="utf-8") as f:
        lines = f.readlines()
    found = []
    for no, code in enumerate(masked(lines)):
        s = code.strip()
        if not s or s.startswith("#") or s.startswith("static_assert") or "template" in s:
            continue
        for m in CMP_RE.finditer(code):
            op = m.group(1)
            found.append(("negate", no, m.start(1), op, NEGATE[op]))
            if op in BOUNDARY:
                found.append(("boundary", no, m.start(1), op, BOUNDARY[op]))
        for m in PLUS1_RE.finditer(code):
            found.append(("off_by_one", no, m.start(), m.group(), ""))
        for m in LOGIC_RE.finditer(code):
            op = m.group(1)
            found.append(("logic", no, m.start(1), op, "||" if op == "&&" else "&&"))
        for m in INT_RE.finditer(code):
            v = int(m.group(1))
            new = {0: "1", 1: "0"}.get(v, str(v + 1))
            found.append(("constant", no, m.start(1), m.group(1), new))
        for m in IF_RE.finditer(code):
            end = close_paren(code, m.end() - 1)
            if end > 0:
                cond = lines[no][m.end():end]
                found.append(("swap_branch", no, m.end(), cond + ")", "!(" + cond + "))"))
        if STMT_RE.match(code) and code.rstrip().endswith(";"):
            body = lines[no].strip()
            col = lines[no].index(body)
            found.append(("drop_statement", no, col, body, "(void)0;"))
    return [{"file": rel, "op": o, "line": ln + 1, "col": c, "old": a, "new": b}
            for (o, ln, c, a, b) in found if lines[ln][c:c + len(a)] == a]


def choose(src, seed, count):
    """A fixed sample, the operators in turn so that each gets its share."""
    by_op = {}
    for d in LIB_DIRS:
        for name in sorted(os.listdir(os.path.join(src, d))):
            if name.endswith((".cpp", ".hpp")):
                rel = f"{d}/{name}"
                for s in sites(os.path.join(src, rel), rel):
                    by_op.setdefault(s["op"], []).append(s)
    rng = random.Random(seed)
    pools = [by_op[k] for k in sorted(by_op)]
    for p in pools:
        rng.shuffle(p)
    picked = []
    while len(picked) < count and any(pools):
        for p in pools:
            if p and len(picked) < count:
                picked.append(p.pop())
    picked.sort(key=lambda s: (s["file"], s["line"], s["col"], s["op"]))
    for i, s in enumerate(picked):
        s["id"] = i
    return picked


def run(cmd, **kw):
    return subprocess.run(cmd, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **kw)


def build_library(build):
    r = run(["cmake", "--build", build, "--target", "vorn_container", "-j1"])
    return r.returncode == 0


def keep_library(build, dest):
    lib = os.path.realpath(os.path.join(build, LIB_NAME))
    run(["strip", "--strip-debug", "-o", dest, lib])
    with open(dest, "rb") as f:
        return hashlib.sha1(f.read()).hexdigest()


def loaded(lib_path, base_lib):
    """The environment that loads lib_path in place of the library."""
    libdir = os.path.join(os.path.dirname(lib_path), "load")
    os.makedirs(libdir, exist_ok=True)
    for src, name in ((lib_path, LIB_NAME), (base_lib, BASE_NAME)):
        dst = os.path.join(libdir, name)
        if os.path.lexists(dst):
            os.remove(dst)
        os.symlink(os.path.abspath(src), dst)
    return dict(os.environ, LD_LIBRARY_PATH=libdir, GTEST_BRIEF="1")


def cases_of(binary, env, timeout):
    listing = run([binary, "--gtest_list_tests"], env=env, timeout=timeout).stdout.decode()
    cases, group = [], ""
    for line in listing.splitlines():
        if not line.startswith(" ") and line.endswith("."):
            group = line
        elif line.startswith("  "):
            cases.append(group + line.split()[0])
    return cases


def passes(cmd, env, timeout):
    p = subprocess.Popen(cmd, env=env, stdout=subprocess.DEVNULL,
                         stderr=subprocess.DEVNULL, start_new_session=True)
    try:
        return p.wait(timeout=timeout) == 0
    except subprocess.TimeoutExpired:
        os.killpg(p.pid, 9)
        p.wait()
        return False


def run_suite(suite_dir, lib_path, base_lib, timeout):
    """True when every binary of the suite passes with lib_path loaded."""
    env = loaded(lib_path, base_lib)
    runs = [[os.path.join(suite_dir, "tests", "vorn_tests")]]
    proc = os.path.join(suite_dir, "tests", "vorn_process_tests")
    if os.path.exists(proc):
        runs += [[proc, "--gtest_filter=" + c] for c in cases_of(proc, env, timeout)]
    return all(passes(cmd, env, timeout) for cmd in runs)


def killing_cases(suite_dir, lib_path, base_lib, timeout):
    """The cases of the suite's vorn_tests that fail, each run alone."""
    env = loaded(lib_path, base_lib)
    binary = os.path.join(suite_dir, "tests", "vorn_tests")
    return [c for c in cases_of(binary, env, timeout)
            if not passes([binary, "--gtest_filter=" + c], env, timeout)]


def load(path, default):
    if os.path.exists(path):
        with open(path) as f:
            return json.load(f)
    return default


def save(path, data):
    with open(path + ".tmp", "w") as f:
        json.dump(data, f, indent=1)
    os.replace(path + ".tmp", path)


def report_cases(work, name):
    res = load(os.path.join(work, f"cases-{name}.json"), {})
    every = {c for killers in res.values() for c in killers}
    unique = {}
    for killers in res.values():
        if len(killers) == 1:
            unique[killers[0]] = unique.get(killers[0], 0) + 1
    print(f"suite {name}, case by case over {len(res)} mutants:")
    for c in sorted(every, key=lambda c: unique.get(c, 0)):
        print(f"  {unique.get(c, 0):3d} alone, {sum(c in k for k in res.values()):3d} in all: {c}")


def report(work, mutants, suites):
    built = [m for m in mutants if m.get("built")]
    print(f"mutants: {len(mutants)} chosen, {len(built)} compiled, "
          f"{sum(1 for m in built if m.get('same_code'))} with unchanged machine code")
    for name in suites:
        res = load(os.path.join(work, f"results-{name}.json"), {})
        done = [m for m in built if str(m["id"]) in res]
        killed = [m for m in done if res[str(m["id"])] == "killed"]
        per_op = {}
        for m in done:
            k = per_op.setdefault(m["op"], [0, 0])
            k[0] += res[str(m["id"])] == "killed"
            k[1] += 1
        ops = ", ".join(f"{o} {k}/{n}" for o, (k, n) in sorted(per_op.items()))
        print(f"suite {name}: killed {len(killed)} of {len(done)} run ({ops})")
    for name in suites:
        res = load(os.path.join(work, f"results-{name}.json"), {})
        for m in built:
            if res.get(str(m["id"])) == "survived":
                print(f"  survived {name} #{m['id']} {m['file']}:{m['line']} {m['op']}: "
                      f"{m['old'].strip()!r} -> {m['new']!r}")


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("--work", default="build/mutate")
    ap.add_argument("--seed", type=int, default=17)
    ap.add_argument("--count", type=int, default=360)
    ap.add_argument("--timeout", type=float, default=20.0)
    ap.add_argument("--suite", action="append", default=[], help="NAME=BUILD_DIR")
    ap.add_argument("--per-case", help="NAME of a suite to run case by case as well")
    ap.add_argument("--report", action="store_true", help="only print the figures")
    a = ap.parse_args()
    work = os.path.abspath(a.work)
    src, build = os.path.join(work, "src"), os.path.join(work, "build")
    kept = os.path.join(work, "mutants")
    os.makedirs(kept, exist_ok=True)
    if not os.path.isdir(src):
        os.makedirs(src)
        top = run(["git", "rev-parse", "--show-toplevel"]).stdout.decode().strip()
        archive = subprocess.Popen(["git", "-C", top, "archive", "HEAD"], stdout=subprocess.PIPE)
        subprocess.run(["tar", "-x", "-C", src], stdin=archive.stdout, check=True)
        archive.wait()
    suites = dict(s.split("=", 1) for s in a.suite) or {"tests": build}
    suites = {k: os.path.abspath(v) for k, v in suites.items()}
    mpath = os.path.join(work, "mutants.json")
    mutants = load(mpath, None)
    if mutants is None:
        mutants = choose(src, a.seed, a.count)
        save(mpath, mutants)
    if a.report:
        report(work, mutants, suites)
        if a.per_case:
            report_cases(work, a.per_case)
        return
    if not os.path.isdir(build):
        subprocess.run(["cmake", "-S", src, "-B", build, "-DCMAKE_BUILD_TYPE=RelWithDebInfo",
                        "-DVORN_BUILD_EXAMPLES=OFF"], check=True, stdout=subprocess.DEVNULL)
    targets = ["vorn_container"] + (["vorn_tests", "vorn_process_tests"] if a.suite == [] else [])
    subprocess.run(["cmake", "--build", build, "-j2", "--target"] + targets, check=True,
                   stdout=subprocess.DEVNULL)
    original = os.path.join(kept, "original.so")
    base_lib = os.path.realpath(os.path.join(build, BASE_NAME))
    if not os.path.exists(original):
        keep_library(build, original)
    with open(original, "rb") as f:
        original_sum = hashlib.sha1(f.read()).hexdigest()
    results = {n: load(os.path.join(work, f"results-{n}.json"), {}) for n in suites}
    for name, d in suites.items():
        if not run_suite(d, original, base_lib, a.timeout):
            sys.exit(f"suite {name} fails on the unmutated library: fix that first")
    for m in mutants:
        key, lib = str(m["id"]), os.path.join(kept, f"{m['id']:04d}.so")
        if "built" not in m:
            path = os.path.join(src, m["file"])
            with open(path, encoding="utf-8") as f:
                text = f.readlines()
            line = text[m["line"] - 1]
            mutated = line[:m["col"]] + m["new"] + line[m["col"] + len(m["old"]):]
            with open(path, "w", encoding="utf-8") as f:
                f.writelines(text[:m["line"] - 1] + [mutated] + text[m["line"]:])
            m["built"] = build_library(build)
            with open(path, "w", encoding="utf-8") as f:
                f.writelines(text)
            if m["built"]:
                m["same_code"] = keep_library(build, lib) == original_sum
            save(mpath, mutants)
        if not m["built"]:
            continue
        for name, d in suites.items():
            if key not in results[name]:
                ok = run_suite(d, lib, base_lib, a.timeout)
                results[name][key] = "survived" if ok else "killed"
                save(os.path.join(work, f"results-{name}.json"), results[name])
        if a.per_case:
            cpath = os.path.join(work, f"cases-{a.per_case}.json")
            cases = load(cpath, {})
            if key not in cases:
                cases[key] = killing_cases(suites[a.per_case], lib, base_lib, a.timeout)
                save(cpath, cases)
        print(f"#{m['id']} {m['file']}:{m['line']} {m['op']}: " +
              " ".join(f"{n}={results[n][key]}" for n in suites), flush=True)
    build_library(build)  # leave the build matching the sources again
    report(work, mutants, suites)
    if a.per_case:
        report_cases(work, a.per_case)


if __name__ == "__main__":
    main()
