"""What scripts/in-debian refuses, and what its command finds. No root folder is made here: debootstrap and chroot are
scripts of this test."""

import os
import shutil
import subprocess
import tempfile
import unittest

TOP = os.path.realpath(os.path.join(os.path.dirname(__file__), "..", ".."))
NOBODY = 65534

# Leaves a root folder as debootstrap would, of which only the folders matter here.
DEBOOTSTRAP = """#!/bin/sh
for last; do folder=${target:-}; target=$last; done
mkdir -p "$folder/proc" "$folder/dev" "$folder/tmp" "$folder/etc/apt/apt.conf.d"
echo "$@" > "$folder/arguments"
"""

# Runs the command in the folder that would be /parvex, with a working PATH.
CHROOT = """#!/bin/sh
cd "$1/parvex" && shift 2
while [ "$1" != in-debian ]; do shift; done
shift
exec "$@"
"""


def may_mount():
    return subprocess.run(["unshare", "--mount", "true"], capture_output=True).returncode == 0


class InDebianTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.programs = self.make_folder("programs")
        self.roots = os.path.join(self.folder, "roots")
        open(os.path.join(self.make_folder("debootstrap", "scripts"), "trixie"), "w").close()

    def make_folder(self, *names):
        path = os.path.join(self.folder, *names)
        os.makedirs(path)
        return path

    def add_program(self, name, text):
        path = os.path.join(self.programs, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        os.chmod(path, 0o755)

    def make_tree(self):
        """A repository with the script, a file with an uncommitted change, a new one, a deleted one and an ignored one."""
        tree = self.make_folder("tree")
        shutil.copytree(os.path.join(TOP, "scripts"), os.path.join(tree, "scripts"))
        for name, text in [(".gitignore", "/build/\n"), ("changed", "old\n"), ("deleted", "x\n")]:
            with open(os.path.join(tree, name), "w", encoding="utf-8") as file:
                file.write(text)
        git = ["git", "-C", tree, "-c", "user.name=T", "-c", "user.email=t@localhost"]
        for command in [["init", "-q"], ["add", "-A"], ["commit", "-q", "-m", "first"]]:
            subprocess.run(git + command, check=True)
        os.remove(os.path.join(tree, "deleted"))
        os.mkdir(os.path.join(tree, "build"))
        for name, text in [("changed", "new\n"), ("added", "x\n"), ("build/ignored", "x\n")]:
            with open(os.path.join(tree, name), "w", encoding="utf-8") as file:
                file.write(text)
        return tree

    def run_script(self, *arguments, tree=TOP, path=None, **options):
        environment = {"PATH": path or self.programs + ":" + os.environ["PATH"], "PARVEX_DEBIAN_ROOTS": self.roots,
                       "DEBOOTSTRAP_DIR": os.path.join(self.folder, "debootstrap")}
        return subprocess.run([shutil.which("bash"), os.path.join(tree, "scripts", "in-debian"), *arguments],
                              env=environment, capture_output=True, encoding="utf-8", **options)

    def refused(self, run, status, message):
        self.assertEqual(run.returncode, status, run.stdout + run.stderr)
        self.assertIn("in-debian: " + message, run.stderr)
        self.assertEqual(run.stdout, "")

    def test_arguments_are_refused_by_name(self):
        self.refused(self.run_script(), 2, "no release is named")
        self.refused(self.run_script("trixie"), 2, "no command is named")
        self.refused(self.run_script("--arch"), 2, "--arch needs a value")
        self.refused(self.run_script("--archh", "i386", "trixie", "true"), 2, "unknown option: --archh")
        self.refused(self.run_script("--bind", "build", "trixie", "true"), 2, "no absolute path of a folder: build")
        self.assertFalse(os.path.exists(self.roots))

    @unittest.skipIf(os.getuid() != 0, "another user can only be tried out by root")
    def test_other_users_are_told_that_it_needs_root(self):
        # The script lies where everybody may read it.
        tree = self.make_tree()
        os.chmod(self.folder, 0o755)
        self.refused(self.run_script("trixie", "true", tree=tree, user=NOBODY), 1, "needs root")

    @unittest.skipIf(os.getuid() != 0, "needs root")
    def test_without_debootstrap_it_says_so(self):
        for name in ["id", "dirname"]:
            os.symlink(shutil.which(name), os.path.join(self.programs, name))
        run = self.run_script("trixie", "true", path=self.programs)
        self.refused(run, 1, "debootstrap is not installed")

    @unittest.skipIf(os.getuid() != 0, "needs root")
    def test_a_release_that_debootstrap_does_not_know_is_refused(self):
        self.add_program("debootstrap", "#!/bin/sh\n")
        self.refused(self.run_script("trixies", "true"), 1, "debootstrap knows no release named trixies")
        self.refused(self.run_script("../scripts/trixie", "true"), 1, "debootstrap knows no release named ../scripts")

    @unittest.skipUnless(os.getuid() == 0 and may_mount(), "needs root and mounts")
    def test_a_failure_of_debootstrap_is_shown_and_leaves_no_root_folder(self):
        self.add_program("apt-get", "#!/bin/sh\necho 'Debian|Debian|mirror'\n")
        self.add_program("debootstrap", DEBOOTSTRAP + "echo 'E: no such mirror'\nexit 3\n")
        run = self.run_script("trixie", "true")
        self.assertEqual(run.returncode, 1, run.stderr)
        self.assertIn("E: no such mirror\nin-debian: debootstrap could not make " + self.roots, run.stderr)
        self.assertEqual([name for name in os.listdir(self.roots) if os.path.isdir(os.path.join(self.roots, name))], [])

    @unittest.skipUnless(os.getuid() == 0 and may_mount(), "needs root and mounts")
    def test_a_machine_whose_apt_knows_no_mirror_is_told_so(self):
        self.add_program("apt-get", "#!/bin/sh\n")
        self.add_program("debootstrap", DEBOOTSTRAP)
        run = self.run_script("trixie", "true")
        self.assertEqual(run.returncode, 1)
        self.assertIn("in-debian: this machine's apt knows no mirror of Debian", run.stderr)

    @unittest.skipUnless(os.getuid() == 0 and may_mount(), "needs root and mounts")
    def test_the_command_runs_on_a_copy_of_the_tree_as_it_lies_here_and_its_status_is_passed_on(self):
        self.add_program("apt-get", "#!/bin/sh\necho 'Debian|Debian|mirror'\n")
        self.add_program("debootstrap", DEBOOTSTRAP)
        self.add_program("chroot", CHROOT)
        tree = self.make_tree()
        run = self.run_script("--arch", "i386", "trixie", "sh", "-c",
                              'pwd; git status --short; cat changed; ls build; touch left; exit "$1"', "sh", "9",
                              tree=tree)
        root = os.path.join(self.roots, "trixie-i386")
        self.assertEqual(run.returncode, 9, run.stderr)
        self.assertEqual(run.stdout, f"Making {root}\n{root}/parvex\n M changed\n D deleted\n?? added\nnew\n")
        self.assertIn("build", run.stderr)
        with open(os.path.join(root, "arguments"), encoding="utf-8") as file:
            self.assertIn("--arch=i386", file.read())

        # The root folder is used again; mounts and copies are gone.
        again = self.run_script("--arch", "i386", "trixie", "true", tree=tree)
        self.assertEqual((again.returncode, again.stdout, again.stderr), (0, "", ""))
        self.assertEqual(os.listdir(os.path.join(root, "parvex")), [])
        self.assertEqual(sorted(os.listdir(self.roots)), ["trixie-i386", "trixie-i386.lock", "trixie-i386.log"])
        with open("/proc/self/mounts", encoding="utf-8") as mounts:
            self.assertNotIn(self.roots, mounts.read())


if __name__ == "__main__":
    unittest.main()
