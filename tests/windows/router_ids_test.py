"""`parvex router-ids` finds the identifiers of a message router in a type library, and says where there are none.

    router_ids_test.py WINDOWS_BIN
"""

import json
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
    saving(windows_bin)
    print("ok")


def saving(windows_bin):
    """What is saved is in force: for the user, and for all users of either bitness."""
    key = r"SOFTWARE\Parvex\Router"

    def run(*arguments):
        return wine.run(windows_bin / "parvex.exe", *arguments, check=False).stdout.decode()

    def expect(condition, seen):
        if not condition:
            sys.exit(f"FAILED: {seen}")

    def in_force():
        checks = json.loads(run("doctor", "--json"))["checks"]
        return next(check for check in checks if check["name"] == "router identifiers")

    def value(hive, view):
        return wine.run("reg", "query", f"{hive}\\{key}", "/v", "ClassId", f"/reg:{view}", check=False).stdout

    check = in_force()
    expect("from this build" in check["detail"] and check["state"] == "warning" and "--save" in check["hint"], check)
    library = wine.windows_path(windows_bin / "KorvaneSubstitute.dll")
    try:
        told = run("router-ids", library, "--save", "--machine-wide")
        expect("saved in HKEY_LOCAL_MACHINE" in told, told)
        expect("from HKEY_LOCAL_MACHINE" in in_force()["detail"], in_force())
        for view in (32, 64):
            expect(b"{196AAAC4" in value("HKLM", view), f"the machine's key, seen with {view} bits: {value('HKLM', view)}")
        told = run("router-ids", library, "--save")
        expect("saved in HKEY_CURRENT_USER" in told, told)
        expect("from HKEY_CURRENT_USER" in in_force()["detail"], in_force())
    finally:
        for hive in ("HKLM", "HKCU"):
            for view in (32, 64):
                wine.run("reg", "delete", f"{hive}\\{key}", "/f", f"/reg:{view}", check=False)


main()
