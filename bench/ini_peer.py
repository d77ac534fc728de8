"""What the look-ups of ini_bench cost in Python, on the files that it left in a folder: with configparser, and with a
plain dictionary filled by splitting the lines.

    ini_peer.py FOLDER
"""

import configparser
import pathlib
import random
import sys
import time

LOOKUPS = 60_000


def by_configparser(text):
    parser = configparser.RawConfigParser(delimiters=("=",), strict=False)
    parser.read_string(text)
    return lambda section, key: parser.get(section, key, fallback="")


def by_dictionary(text):
    sections, keys = {}, {}
    for line in text.splitlines():
        line = line.strip()
        if line.startswith("["):
            keys = sections.setdefault(line[1:line.rfind("]")].strip().lower(), {})
        else:
            key, sign, value = line.partition("=")
            if sign:
                keys.setdefault(key.rstrip().lower(), value.strip())
    return lambda section, key: sections.get(section.lower(), {}).get(key.lower(), "")[:254]


def seconds(work):
    start = time.process_time()
    result = work()
    return time.process_time() - start, result


def main():
    for path in sorted(pathlib.Path(sys.argv[1]).glob("drive_c/*.ini"), key=lambda p: p.stat().st_size):
        text = path.read_bytes().decode("cp1252")
        section_count = text.count("[")
        key_count = text.count("=") // section_count
        rng = random.Random(1)
        walk = [(f"PartNumber{rng.randrange(section_count) + 1}", f"Description:{rng.randrange(key_count) + 1}")
                for _ in range(LOOKUPS)]
        for name, reader in (("configparser", by_configparser), ("dictionary", by_dictionary)):
            parsing, find = seconds(lambda: reader(path.read_bytes().decode("cp1252")))
            finding, found = seconds(lambda: sum(len(find(*names)) for names in walk))
            assert found > 0
            print(f"{path.stem:16} {name:13} read+parse {parsing * 1e3:8.1f} ms   "
                  f"look-up {finding / LOOKUPS * 1e9:6.0f} ns")


if __name__ == "__main__":
    main()
