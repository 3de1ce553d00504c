"""Somebody else at the same computer: another user of this side, with a copy of the prefix and settings of
his own, who may not change a folder of it."""

import os
import pathlib
import shutil
import subprocess
import tempfile

from wine_prefix import link_or_copy

SOMEBODY = 65534  # who owns nothing


class SecondUser:
    """WINEPREFIX names the copy until the end. Only root can become somebody else; all others stay who they
    are, and lose the right to write."""

    def __init__(self, locked_folder):
        self._original = pathlib.Path(os.environ["WINEPREFIX"])
        self._locked = locked_folder.relative_to(self._original)

    def __enter__(self):
        self._folder = tempfile.TemporaryDirectory(prefix="mosaicon second user ")
        top = pathlib.Path(self._folder.name)
        prefix = top / "prefix"
        shutil.copytree(
            self._original, prefix, symlinks=True, copy_function=link_or_copy, ignore=where_the_server_is
        )
        for name in prefix.glob("*.reg"):
            name.unlink()
            if name.name != "user.reg":  # whose settings are his own
                shutil.copyfile(self._original / name.name, name)
        self.command = []
        if os.geteuid() == 0:
            self.command = ["setpriv", f"--reuid={SOMEBODY}", f"--regid={SOMEBODY}", "--clear-groups"]
        self._give(top, prefix)
        os.environ["WINEPREFIX"] = str(prefix)
        os.environ["HOME"], self._home = str(top), os.environ.get("HOME", "")
        return self

    def _give(self, top, prefix):
        locked = prefix / self._locked
        for folder, _, _ in os.walk(top):
            if self.command and locked not in (pathlib.Path(folder), *pathlib.Path(folder).parents):
                os.chown(folder, SOMEBODY, SOMEBODY)
        if self.command:
            for name in prefix.glob("*.reg"):
                os.chown(name, SOMEBODY, SOMEBODY)
        else:
            subprocess.run(["chmod", "-R", "a-w", locked], check=True)

    def may_write_to(self, folder):
        return subprocess.run([*self.command, "test", "-w", folder], check=False).returncode == 0

    def __exit__(self, *_):
        try:
            for what in ("-k", "-w"):
                subprocess.run([*self.command, "wineserver", what], check=False, timeout=60)
            subprocess.run(["chmod", "-R", "u+w", self._folder.name], check=True)
        finally:
            os.environ["WINEPREFIX"], os.environ["HOME"] = str(self._original), self._home
            self._folder.cleanup()


def where_the_server_is(folder, names):
    """Wine's own file about the server that runs for a prefix."""
    return [name for name in names if name == "wineserver" and os.path.isfile(os.path.join(folder, name))]
