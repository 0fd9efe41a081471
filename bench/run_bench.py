#!/usr/bin/env python3
"""Quillmeal against plain references: `make bench`.

Each workload runs ours and its reference in turn (A, B, A, B, ...) after one warm-up of each.
A line shows the median of each side, the min and the median of the pair ratios, the goal and the
verdict; the verdict follows the median ratio. Wall-clock timing on a shared machine is noisy:
the ratios are what count. The large databases are built here, in a temporary folder.

usage: run_bench.py [--build DIR] [--quick] [--runs N] [--only NAME,...]
Exit status 1 when a workload misses its goal.
"""
import argparse
import os
import re
import shutil
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import threading
import time

SAMPLE_ID_FLOOR = 1000001  # ids of the copied recipes start here, far above the delivered ones
GIVE_UP_SECONDS = 60  # a side this slow is measured once


class BenchError(Exception):
    pass


class Run:
    def __init__(self, seconds, peak_mb, out):
        self.seconds, self.peak_mb, self.out = seconds, peak_mb, out


def run(cmd, env=None, timeout=600):
    """One process, its wall time and its peak resident memory (from wait4)."""
    full_env = dict(BASE_ENV, **(env or {}))
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        start = time.perf_counter()
        proc = subprocess.Popen(cmd, stdout=out, stderr=err, env=full_env)
        timed_out = threading.Event()

        def kill():
            timed_out.set()
            proc.kill()

        timer = threading.Timer(timeout, kill)
        timer.start()
        _, status, usage = os.wait4(proc.pid, 0)
        elapsed = time.perf_counter() - start
        timer.cancel()
        proc.returncode = os.waitstatus_to_exitcode(status)
        out.seek(0)
        err.seek(0)
        text, error = out.read().decode(errors="replace"), err.read().decode(errors="replace")
    if timed_out.is_set():
        raise BenchError(f"{os.path.basename(cmd[0])} did not end within {timeout} s")
    if proc.returncode != 0:
        raise BenchError(f"{' '.join(cmd)}: exit {proc.returncode}\n{error.strip()[-2000:]}")
    return Run(elapsed, usage.ru_maxrss / 1024.0, text)


# ------------------------------------------------------------------------------------------------
# Reporting

FAILED = []


def line(name, ours, reference, ratio, goal, verdict):
    print(f"{name:<24}{ours:>13}{reference:>12}{ratio:>16}  {goal:<12}{verdict}", flush=True)
    if verdict == "FAIL":
        FAILED.append(name)


def report_pairs(name, pairs, goal, unit="ms", scale=1000.0):
    """pairs: (ours, reference); passes when the median of ours/reference is at most goal."""
    ratios = [a / b for a, b in pairs if b > 0]
    ours = statistics.median(a for a, _ in pairs) * scale
    ref = statistics.median(b for _, b in pairs) * scale
    med = statistics.median(ratios)
    line(name, f"{ours:.1f} {unit}", f"{ref:.1f} {unit}", f"{min(ratios):.2f}/{med:.2f}", f"<= {goal}x",
         "PASS" if med <= goal else "FAIL")


def skip(name, why):
    line(name, "-", "-", "-", "-", f"SKIP ({why})")


# ------------------------------------------------------------------------------------------------
# Data

def copy_database(source, root):
    """A data root holding a copy of the database file and the update script."""
    os.makedirs(os.path.join(root, "Database"), exist_ok=True)
    target = os.path.join(root, "Database", "Hearthnote.db")
    for suffix in ("-wal", "-shm"):
        if os.path.exists(target + suffix):
            os.remove(target + suffix)
    shutil.copyfile(source, target)
    shutil.copyfile(os.path.join(DELIVERED_DIR, "DatabaseUpdate.xml"),
                    os.path.join(root, "Database", "DatabaseUpdate.xml"))
    return target


def columns_but(con, table, skip_column):
    return [row[1] for row in con.execute(f"PRAGMA table_info({table})") if row[1] != skip_column]


def build_large(path, recipes):
    """Copies the delivered sample recipes, with their lines and categories, up to `recipes`."""
    con = sqlite3.connect(path)
    sample = [row[0] for row in con.execute("SELECT recId FROM Recipes ORDER BY recId")]
    need = recipes - len(sample)
    con.execute("CREATE TEMP TABLE Copies ( newId INTEGER PRIMARY KEY, oldId INTEGER, copy INTEGER )")
    con.executemany("INSERT INTO Copies VALUES ( ?, ?, ? )",
                    ((SAMPLE_ID_FLOOR + k, sample[k % len(sample)], k // len(sample) + 1) for k in range(need)))
    recipe_columns = columns_but(con, "Recipes", "recId")
    values = ["substr( R.recName || ' ' || C.copy, 1, 128 )" if c == "recName" else "R." + c
              for c in recipe_columns]
    con.execute(f"INSERT INTO Recipes ( recId, {', '.join(recipe_columns)} ) "
                f"SELECT C.newId, {', '.join(values)} FROM Copies C JOIN Recipes R ON R.recId = C.oldId")
    for table in ("Contents", "RecCat"):
        cols = columns_but(con, table, "recId")
        con.execute(f"INSERT INTO {table} ( recId, {', '.join(cols)} ) "
                    f"SELECT C.newId, {', '.join('T.' + c for c in cols)} "
                    f"FROM Copies C JOIN {table} T ON T.recId = C.oldId")
    con.commit()
    count = con.execute("SELECT COUNT(*) FROM Recipes").fetchone()[0]
    con.close()
    return count


def schedule_menus(path):
    """Puts each menu's recipes on a week of days, so that the date amounts have rows."""
    con = sqlite3.connect(path)
    con.execute("INSERT OR IGNORE INTO RecDate ( recId, dateScheduled, servings ) "
                "SELECT recId, 37987 + 7 * menuId + recId % 7, servings FROM RecMen")
    con.commit()
    con.close()


def write_price_list(path, db, entries):
    """`entries` ingredient elements over the delivered ingredients, in turn."""
    con = sqlite3.connect(db)
    ids = [row[0] for row in con.execute("SELECT ingredId FROM Ingreds ORDER BY ingredId")]
    con.close()
    with open(path, "w", encoding="utf-8") as f:
        f.write('<?xml version="1.0" encoding="UTF-8"?>\n<priceList>\n')
        for k in range(entries):
            f.write(f'  <ingredient id="{ids[k % len(ids)]}" price="{1 + k % 997 / 100:.2f}"/>\n')
        f.write("</priceList>\n")


def most_used_ingredient(db):
    con = sqlite3.connect(db)
    row = con.execute("SELECT ingredId FROM Contents GROUP BY ingredId ORDER BY COUNT(*) DESC LIMIT 1").fetchone()
    con.close()
    return row[0]


def plain_like(sql):
    """The statement for the stock sqlite3: Jet wildcards inside LIKE patterns become SQL ones."""
    return re.sub(r"LIKE '([^']*)'",
                  lambda m: "LIKE '" + m.group(1).replace("*", "%").replace("?", "_") + "'", sql)


# ------------------------------------------------------------------------------------------------
# Workloads

def interleave(runs, ours, reference):
    warm = (ours(), reference())  # warm-up: file caches and the dynamic loader
    if warm[0].seconds > GIVE_UP_SECONDS:
        return [warm]  # far off its goal: one run tells enough
    return [(ours(), reference()) for _ in range(runs)]


def startup(ctx):
    # A name of its own, so that a Quillmeal already running for this user doesn't take the start.
    link = os.path.join(ctx.tmp, "quillmeal-bench-start")
    if not os.path.exists(link):
        os.symlink(os.path.join(BIN, "quillmeal"), link)
    cmd = [link, "--data-root", ctx.small_root, "--config-dir", ctx.config]
    env = {"QUILLMEAL_BENCH_QUIT_WHEN_IDLE": "1"}
    try:
        run(cmd, env, timeout=30)
    except BenchError as e:
        skip("startup", "the program does not quit when idle: QUILLMEAL_BENCH_QUIT_WHEN_IDLE")
        print(f"    {str(e).splitlines()[0]}", file=sys.stderr)
        return
    bare = [os.path.join(BENCH, "bench-bare-window")]
    pairs = interleave(ctx.runs, lambda: run(cmd, env), lambda: run(bare))
    report_pairs("startup", [(a.seconds, b.seconds) for a, b in pairs], 1.5)
    ours = statistics.median(a.peak_mb for a, _ in pairs)
    ref = statistics.median(b.peak_mb for _, b in pairs)
    line("startup-memory", f"{ours:.1f} MB", f"{ref:.1f} MB", f"{ours / ref:.2f}", "-", "INFO")


def in_process(ctx, mode, root):
    """quillmeal-bench prints "workload OURS REFERENCE" per run; its pairs by workload."""
    out = run([os.path.join(BENCH, "quillmeal-bench"), mode, root, str(ctx.runs + 1)]).out
    pairs = {}
    for text in out.splitlines():
        name, ours, ref = text.split()
        pairs.setdefault(name, []).append((float(ours), float(ref)))
    # The first is the warm-up, unless a run so slow that the program gave up is all there is.
    return {name: p[1:] or p for name, p in pairs.items()}


def amounts(ctx):
    pairs = in_process(ctx, "amounts", ctx.small_root)
    report_pairs("ingredient-in-menu", pairs["ingredient-in-menu"], 1.1)
    report_pairs("ingredient-for-date", pairs["ingredient-for-date"], 1.1)


def ingredient_pattern(ctx):
    report_pairs("ingredient-pattern", in_process(ctx, "ingredient-pattern", ctx.small_root)["ingredient-pattern"],
                 2.0)


def recipe_search(ctx, name, options):
    cli = [os.path.join(BIN, "quillmeal-cli"), "--data-root", ctx.large_root, "--config-dir", ctx.config,
           "search-recipes"] + options
    statement = plain_like(run(cli + ["--sql"]).out)
    ref = ["sqlite3", ctx.large_db, statement]
    hits_ours, hits_ref = len(run(cli).out.splitlines()), len(run(ref).out.splitlines())
    if hits_ours != hits_ref:
        raise BenchError(f"{name}: {hits_ours} hits, the reference {hits_ref}")
    report_pairs(name, [(a.seconds, b.seconds) for a, b in interleave(ctx.runs, lambda: run(cli), lambda: run(ref))],
                 1.2)


def recipe_searches(ctx):
    recipe_search(ctx, "recipe-search-name", ["--pattern", "soup"])
    recipe_search(ctx, "recipe-search-nutrient", ["--nutrient", "nutCal<=300"])
    recipe_search(ctx, "recipe-search-contains", ["--contains", str(most_used_ingredient(ctx.large_db))])


def recipes_window(ctx):
    ours_cmd = [os.path.join(BENCH, "quillmeal-bench"), "recipes-window", ctx.large_root]
    ref_cmd = [os.path.join(BENCH, "bench-plain-sqlite"), "columns", ctx.large_db]
    pairs = interleave(ctx.runs, lambda: run(ours_cmd), lambda: run(ref_cmd))

    def inner(r):  # the time the program measured itself, without its start
        return float(r.out.split()[1])

    report_pairs("recipes-window", [(inner(a), inner(b)) for a, b in pairs], 1.2)
    peak = statistics.median(a.peak_mb for a, _ in pairs)
    line("recipes-window-memory", f"{peak:.1f} MB", "-", "-", "<= 120 MB", "PASS" if peak <= 120 else "FAIL")


def price_list(ctx):
    entries = ctx.price_entries
    list_file = os.path.join(ctx.tmp, "prices.xml")
    write_price_list(list_file, DELIVERED_DB, entries)
    ours_root = os.path.join(ctx.tmp, "prices-ours")
    ref_db = os.path.join(ctx.tmp, "prices-ref", "Hearthnote.db")
    os.makedirs(os.path.dirname(ref_db), exist_ok=True)
    cli = [os.path.join(BIN, "quillmeal-cli"), "--data-root", ours_root, "--config-dir", ctx.config,
           "import-price-list", list_file]

    def ours():
        copy_database(DELIVERED_DB, ours_root)
        r = run(cli)
        if r.out.strip() != str(entries):
            raise BenchError(f"import-price-list applied {r.out.strip()} of {entries}")
        return r

    def reference():
        for suffix in ("", "-wal", "-shm"):
            if os.path.exists(ref_db + suffix):
                os.remove(ref_db + suffix)
        shutil.copyfile(DELIVERED_DB, ref_db)
        return run([os.path.join(BENCH, "bench-plain-sqlite"), "price-list", ref_db, list_file])

    pairs = [(a.seconds, b.seconds) for a, b in interleave(ctx.runs, ours, reference)]
    report_pairs("price-list", pairs, 3.0, unit="s", scale=1.0)
    rate = entries / statistics.median(a for a, _ in pairs)
    line("price-list-rate", f"{rate:,.0f}/s", "-", "-", ">= 20,000/s", "PASS" if rate >= 20000 else "FAIL")


def mealmaster_import(ctx):
    # Slot for the Meal-Master import: ours against plain inserts of the same recipes, once it exists.
    skip("mealmaster-import", "no Meal-Master import yet")


WORKLOADS = {
    "startup": startup,
    "amounts": amounts,
    "recipe-search": recipe_searches,
    "ingredient-pattern": ingredient_pattern,
    "recipes-window": recipes_window,
    "price-list": price_list,
    "mealmaster-import": mealmaster_import,
}
NEEDS_LARGE = {"recipe-search", "recipes-window"}


class Context:
    pass


def main():
    global BIN, BENCH, DELIVERED_DIR, DELIVERED_DB, BASE_ENV
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", default="build", help="the CMake build folder (default: build)")
    parser.add_argument("--quick", action="store_true", help="CI size: 3 runs, 20,000 recipes and prices")
    parser.add_argument("--runs", type=int, help="runs of each side (default 7, quick 3)")
    parser.add_argument("--only", help="comma-separated workloads: " + ", ".join(WORKLOADS))
    args = parser.parse_args()
    BIN = os.path.abspath(os.path.join(args.build, "bin"))
    BENCH = os.path.abspath(os.path.join(args.build, "bench"))
    DELIVERED_DIR = os.path.join(BIN, "delivered")
    DELIVERED_DB = os.path.join(DELIVERED_DIR, "Hearthnote.db")
    BASE_ENV = dict(os.environ, QT_QPA_PLATFORM="offscreen", LC_ALL="C.UTF-8", QT_LOGGING_RULES="qt.qpa.*=false")
    selected = args.only.split(",") if args.only else list(WORKLOADS)
    unknown = [name for name in selected if name not in WORKLOADS]
    if unknown:
        parser.error("unknown workload: " + ", ".join(unknown))

    ctx = Context()
    ctx.runs = args.runs or (3 if args.quick else 7)
    ctx.recipes = 20000 if args.quick else 100000
    ctx.price_entries = 20000 if args.quick else 100000
    with tempfile.TemporaryDirectory(prefix="quillmeal-bench-") as tmp:
        ctx.tmp = tmp
        ctx.config = os.path.join(tmp, "config")
        ctx.small_root = os.path.join(tmp, "delivered")
        schedule_menus(copy_database(DELIVERED_DB, ctx.small_root))
        if NEEDS_LARGE & set(selected):
            ctx.large_root = os.path.join(tmp, "large")
            ctx.large_db = copy_database(DELIVERED_DB, ctx.large_root)
            ctx.recipes = build_large(ctx.large_db, ctx.recipes)
        print(f"{ctx.runs} runs a side; {ctx.recipes:,} recipes in the large database; "
              f"{ctx.price_entries:,} prices; ratio = ours / reference, min/median")
        line("workload", "ours", "reference", "ratio", "goal", "")
        for name in selected:
            try:
                WORKLOADS[name](ctx)
            except BenchError as e:
                line(name, "-", "-", "-", "-", "FAIL (error)")
                print(f"    {e}", file=sys.stderr)
    if FAILED:
        print("missed: " + ", ".join(FAILED))
    return 1 if FAILED else 0


if __name__ == "__main__":
    sys.exit(main())
