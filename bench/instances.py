#!/usr/bin/env python3
"""Solves benchmark instances and records how far each run ends from the best-known value.

    bench/instances.py PROGRAM ROOT [--time SEC] [--threads N] [--seed N] [--families F,F] [--instances I,I] [--out FILE]
                       [--param KEY=VALUE]... [--options OPTIONS]

PROGRAM is build/release/bench/instance_run. ROOT holds a manifest.json (family, name, file, converter, options, best,
direction), the instances, and tools/FAMILY.py, which converts an instance to a model file and checks a solution against
the original data. Prints one row of a Markdown table per instance; a run is marked when the checker
finds another feasibility or other objectives than the solver reported. A gap below 0 is better than the best known.
"""
import argparse
import json
import pathlib
import subprocess
import sys
import tempfile


def convert(root, entry, model, further):
    tool = root / "tools" / (entry["converter"] + ".py")
    options = entry.get("options") or []
    if isinstance(options, str):
        options = options.split()
    options = [*options, *further.split()]
    source = root / entry["file"]
    subprocess.run([sys.executable, tool, source, model, *options], check=True, stdout=subprocess.DEVNULL)
    return [sys.executable, str(tool), str(source), "--check"], options


def run(program, root, entry, args, folder):
    model = folder / "model.qvm.gz"
    saved = folder / "solved.qvm.gz"
    check, options = convert(root, entry, model, args.options)
    command = [program, str(model), str(saved), str(args.time), str(args.threads), str(args.seed), *args.param]
    result = json.loads(subprocess.run(command, check=True, capture_output=True, text=True).stdout)
    verdict = subprocess.run([*check, str(saved), *options], capture_output=True, text=True)
    try:
        result["check"] = json.loads(verdict.stdout)
    except json.JSONDecodeError:
        result["check"] = {"error": (verdict.stdout + verdict.stderr)[-200:]}
    feasible = result["status"] >= 2
    result["confirmed"] = result["check"].get("feasible") == feasible and (
        not feasible or result["check"].get("objectives") == result["objectives"])
    return result


def row(entry, result):
    value = result["objectives"][0] if result["status"] >= 2 else None
    best = entry["best"]
    toward = -1 if entry["direction"].startswith("max") else 1
    gap = "-" if value is None else f"{toward * (value - best) / max(1, abs(best)) * 100:.2f}"
    shown = f"infeasible ({result['violated']})" if value is None else value
    mark = "" if result["confirmed"] else " (not confirmed)"
    return (f"| {entry['family']} | {entry['name']} | {best} | {shown}{mark} | {gap} | "
            f"{result['iterationsPerSecond'] / 1000:.0f} k | {', '.join(result['moves'])} |")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program")
    parser.add_argument("root", type=pathlib.Path)
    parser.add_argument("--time", type=int, default=60)
    parser.add_argument("--threads", type=int, default=2)
    parser.add_argument("--seed", type=int, default=0)
    parser.add_argument("--families", default="")
    parser.add_argument("--instances", default="")
    parser.add_argument("--param", action="append", default=[])
    parser.add_argument("--options", default="", help="further options of the converter, such as '--colors 18'")
    parser.add_argument("--out", type=pathlib.Path)
    args = parser.parse_args()
    manifest = json.loads((args.root / "manifest.json").read_text())
    entries = manifest["instances"] if isinstance(manifest, dict) else manifest
    if args.families:
        entries = [e for e in entries if e["family"] in args.families.split(",")]
    if args.instances:
        entries = [e for e in entries if e["name"] in args.instances.split(",")]
    print("| family | instance | best known | reached | gap % | iterations/s | moves that improved most |")
    print("|---|---|---|---|---|---|---|")
    results = {}
    for entry in entries:
        with tempfile.TemporaryDirectory() as folder:
            results[entry["name"]] = run(args.program, args.root, entry, args, pathlib.Path(folder))
        print(row(entry, results[entry["name"]]), flush=True)
        if args.out:
            args.out.write_text(json.dumps(results, indent=1))


if __name__ == "__main__":
    main()
