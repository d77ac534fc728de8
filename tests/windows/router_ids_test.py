"""`parvex router-ids` finds the identifiers of a message router in a type library, and says where there are none.

    router_ids_test.py WINDOWS_BIN
"""

import sys
from pathlib import Path

import wine

# What the build has by default: the substitute's.
WANTED = ("-DPARVEX_ROUTER_CLSID={196AAAC4-3B30-44CD-BF13-4C212B3BCD3D}\n"
          "-DPARVEX_ROUTER_IID={E3B59D45-E9F2-4852-95E0-C034FE2B0A22}\n")


def main():
    windows_bin = Path(sys.argv[1])

    def ask(name):
        return wine.run(windows_bin / "parvex.exe", "router-ids", wine.windows_path(windows_bin / name), check=False)

    found = ask("KorvaneSubstitute.dll").stdout.decode()
    if found != WANTED:
        sys.exit(f"FAILED: of the substitute it says {found}")
    for name, reason in (("Parvex.dll", "SendRequestMessage"), ("LICENSE.txt", "no type library")):
        done = ask(name)
        told = done.stderr.decode()
        if done.returncode != 3 or name not in told or reason not in told:
            sys.exit(f"FAILED: of {name} it says {told} and ends with {done.returncode}")
    print("ok")


main()
