"""Puts into an installer what its compiler has no words for: conditions of components, variables of the environment,
and the properties that are handed from the user's part of an installation to the system's.

    finish_msi.py MSI CONDITIONS

CONDITIONS is a file of lines "component<tab>condition" and "component<tab>variable<tab>value", and one line of
properties, separated by semicolons.
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


def put_variables(database, variables):
    database.execute("CREATE TABLE `Environment` (`Environment` CHAR(72) NOT NULL, `Name` CHAR(255) NOT NULL LOCALIZABLE,"
                     " `Value` CHAR(255) LOCALIZABLE, `Component_` CHAR(72) NOT NULL PRIMARY KEY `Environment`)")
    for component, variable, value in variables:
        database.execute("INSERT INTO `Environment` (`Environment`, `Name`, `Value`, `Component_`)"
                         f" VALUES ('{component}', '{variable}', '{value}', '{component}')")
    # Where the system's own installers have them: before files are removed, and after they are there.
    for action, place in (("RemoveEnvironmentStrings", 3300), ("WriteEnvironmentStrings", 5200)):
        database.execute(f"INSERT INTO `InstallExecuteSequence` (`Action`, `Sequence`) VALUES ('{action}', {place})")


def main():
    msi, conditions = map(Path, sys.argv[1:])
    database = Database(msi)
    lines = [line.split("\t") for line in conditions.read_text().splitlines()]
    for component, condition in (line for line in lines if len(line) == 2):
        database.execute(f"UPDATE `Component` SET `Condition` = '{condition}' WHERE `Component` = '{component}'")
    for (properties,) in (line for line in lines if len(line) == 1):
        database.execute(f"UPDATE `Property` SET `Value` = '{properties}' WHERE `Property` = 'SecureCustomProperties'")
    put_variables(database, [line for line in lines if len(line) == 3])
    # The compiler gives the root "of the user or the machine" a number that is none.
    database.execute("UPDATE `Registry` SET `Root` = -1 WHERE `Root` = 4")
    database.commit()


main()
