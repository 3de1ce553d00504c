"""A copy of the Wine prefix for one run of tests, so that other users of it are neither seen nor
disturbed. There is one place for each kind of tests, in turn: a run that was killed leaves it full, but
never locked. It lies beside the original, in the same file system: the large files are linked."""

import fcntl
import os
import shutil
import subprocess

PATIENCE = 120  # seconds until Wine counts as hung


class WinePrefix:
    def __init__(self, original, name):
        """Waits for its turn; then WINEPREFIX names the copy."""
        self.path = original.with_name(f"{original.name}-{name}")
        self.path.mkdir(exist_ok=True)
        self._lock = os.open(self.path, os.O_RDONLY)
        fcntl.flock(self._lock, fcntl.LOCK_EX)
        os.environ["WINEPREFIX"] = str(self.path)
        self.empty()
        shutil.copytree(original, self.path, symlinks=True, dirs_exist_ok=True,
                        ignore=temporary_files, copy_function=link_or_copy_registry)

    def empty(self):
        """With all that still runs in it. The folder itself stays: it is the lock."""
        if (self.path / "system.reg").exists():
            subprocess.run(["wineserver", "-k"], check=False, timeout=PATIENCE)
            subprocess.run(["wineserver", "-w"], check=True, timeout=PATIENCE)
        for entry in self.path.iterdir():
            if entry.is_dir() and not entry.is_symlink():
                shutil.rmtree(entry)
            else:
                entry.unlink()

    def close(self):
        self.empty()
        os.close(self._lock)


def temporary_files(folder, names):
    """Other users of the original make and remove them while it is copied."""
    return names if os.path.basename(folder) == "Temp" else []


def link_or_copy(source, target):
    try:
        os.link(source, target)
    except OSError:
        shutil.copy2(source, target)


def link_or_copy_registry(source, target):
    (shutil.copy2 if source.endswith(".reg") else link_or_copy)(source, target)
