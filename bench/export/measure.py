#!/usr/bin/env python3
"""Measures the export beside its peer and its limit in one run and prints ratios.

  measure.py PARVEX EXPORT_LIMIT WORK_FOLDER

Each figure is the best of several whole-process runs, taken in turn so that all meet the same machine.
"""
import os
import shutil
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))


def best(commands, rounds):
    times = {name: [] for name in commands}
    for _ in range(rounds):
        for name, run in commands.items():
            start = time.perf_counter()
            run()
            times[name].append(time.perf_counter() - start)
    return {name: min(values) for name, values in times.items()}


def canonical(path):
    from lxml import etree
    return etree.tostring(etree.parse(path), method="c14n")


def selection(folder, tags, accessories, blob):
    shutil.rmtree(folder, ignore_errors=True)
    subprocess.run([sys.executable, os.path.join(HERE, "make_selection.py"), folder, str(tags), str(accessories),
                    str(blob)], check=True)


def export(parvex, folder, reply):
    with open(reply, "wb") as out:
        subprocess.run([parvex, "--machine", folder, "pull-ngorla", os.path.join(folder, "getHybrisXML.xml")],
                       stdout=out, check=True)


def beside_peer_and_limit(parvex, limit, work, tags, rounds):
    folder = os.path.join(work, f"machine{tags}")
    reply, peer, bound = (os.path.join(work, name) for name in ("reply.xml", "peer.xml", "limit.txt"))
    selection(folder, tags, 30, 20000)
    figures = best({
        "parvex": lambda: export(parvex, folder, reply),
        "peer": lambda: subprocess.run([sys.executable, os.path.join(HERE, "peer.py"), folder, peer], check=True),
        "limit": lambda: subprocess.run([limit, folder, reply, bound], check=True),
    }, rounds)
    if canonical(reply) != canonical(peer):
        sys.exit(f"the export and its peer differ: {reply} {peer}")
    own = figures["parvex"]
    print(f"export, {tags} tags, 30 accessories, 20 KB blobs: {own * 1000:.0f} ms; Python with lxml takes "
          f"{figures['peer'] / own:.1f} times as long; {own / figures['limit']:.1f} times the limit")


def growth(parvex, work, what, small, large, rounds):
    times = {}
    for name, sizes in (("small", small), ("large", large)):
        folder = os.path.join(work, "growth-" + name)
        selection(folder, *sizes)
        times[name] = best({name: lambda: export(parvex, folder, os.path.join(work, "growth.xml"))}, rounds)[name]
    print(f"10 times the {what}: {times['large'] / times['small']:.1f} times the time "
          f"({times['small'] * 1000:.0f} ms, {times['large'] * 1000:.0f} ms)")


def main():
    parvex, limit, work = sys.argv[1:4]
    os.makedirs(work, exist_ok=True)
    beside_peer_and_limit(parvex, limit, work, 200, 7)
    beside_peer_and_limit(parvex, limit, work, 1000, 5)
    growth(parvex, work, "tags", (500, 30, 2000), (5000, 30, 2000), 3)
    growth(parvex, work, "components of one unit", (1, 3200, 2000), (1, 32000, 2000), 5)


main()
