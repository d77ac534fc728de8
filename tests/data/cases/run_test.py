"""The recorded calls beside this script are done again: packed, and run as a customer's folder would be.

    run_test.py PROGRAM [wine]
"""

import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).parent
sys.path.insert(0, str(HERE.parents[1] / "windows"))


def main():
    program, on_windows = sys.argv[1], sys.argv[2:] == ["wine"]
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([sys.executable, HERE / "make", "all", folder], check=True)
        if on_windows:
            import wine
            run = wine.run(program, "case", "run", wine.windows_path(folder), check=False)
        else:
            run = subprocess.run([program, "case", "run", folder], capture_output=True)
    told = (run.stdout + run.stderr).decode(errors="replace")
    print(told)
    wanted = f"{len(list(HERE.glob('*.txt')))} reproduced, 0 not"
    if run.returncode != 0 or told.splitlines()[-1:] != [wanted] or wanted[:3] != "10 ":
        sys.exit(f"FAILED: it ends with {run.returncode}, and not with {wanted}")


main()
