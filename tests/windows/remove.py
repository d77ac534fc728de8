"""Takes out what prepare.py registered, so that the tests of the seams find a prefix without it when they run again.

    remove.py WINDOWS_BIN
"""

import sys
from pathlib import Path

import wine


def main():
    for dll in ("Parvex.dll", "SubstituteEngine.dll", "KorvaneSubstitute.dll"):
        wine.register(Path(sys.argv[1]) / dll, "/u")


main()
