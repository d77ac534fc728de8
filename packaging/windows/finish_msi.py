"""Puts into an installer what its compiler has no words for: conditions of components, and the properties that are
handed from the user's part of an installation to the system's.

    finish_msi.py MSI CONDITIONS

CONDITIONS is a file of lines "component<tab>condition", and one line of properties, separated by semicolons.
"""

import ctypes
import sys
from pathlib import Path

TRANSACT = 4


def library_of_installers():
    """Debian 12 and 13 have it under different names."""
    for name in ("libmsi-1.0.so.0", "libmsi.so.0"):
        try:
            return ctypes.CDLL(name)
        except OSError:
            pass
    sys.exit("finish_msi: there is no libmsi, which wixl comes with")


class Database:
    """The tables of an installer, through the library that its compiler is built on."""

    def __init__(self, path):
        self.msi = library_of_installers()
        gobject = ctypes.CDLL("libgobject-2.0.so.0")
        self.release = gobject.g_object_unref
        self.release.argtypes = [ctypes.c_void_p]
        for function in (self.msi.libmsi_database_new, self.msi.libmsi_query_new):
            function.restype = ctypes.c_void_p
        self.error = ctypes.c_void_p()
        self.handle = ctypes.c_void_p(self.call(self.msi.libmsi_database_new, str(path).encode(), TRANSACT, None))

    def call(self, function, *arguments):
        result = function(*arguments, ctypes.byref(self.error))
        if self.error.value or not result:
            sys.exit(f"finish_msi.py: {function.__name__} fails with {arguments}")
        return result

    def execute(self, statement):
        query = ctypes.c_void_p(self.call(self.msi.libmsi_query_new, self.handle, statement.encode()))
        self.call(self.msi.libmsi_query_execute, query, None)
        self.release(query)

    def commit(self):
        self.call(self.msi.libmsi_database_commit, self.handle)
        self.release(self.handle)


def main():
    msi, conditions = map(Path, sys.argv[1:])
    database = Database(msi)
    for line in conditions.read_text().splitlines():
        component, tab, condition = line.partition("\t")
        if tab:
            database.execute(f"UPDATE `Component` SET `Condition` = '{condition}' WHERE `Component` = '{component}'")
        else:
            database.execute(f"UPDATE `Property` SET `Value` = '{line}' WHERE `Property` = 'SecureCustomProperties'")
    # The compiler gives the root "of the user or the machine" a number that is none.
    database.execute("UPDATE `Registry` SET `Root` = -1 WHERE `Root` = 4")
    database.commit()


main()
