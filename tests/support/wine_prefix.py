"""A copy of the Wine prefix for one run of tests, so that other users of it are neither seen nor
disturbed. Each kind of tests has its places, which are used again: a run that was killed leaves its place
full, but never locked. They lie beside the original, in the same file system: the large files are linked.
"""

import fcntl
import os
import shutil
import subprocess
import time

PATIENCE = 600  # seconds until Wine counts as hung
PLACES = 16  # at most so many copies for one kind of tests at once


def lock_one_of(folders):
    """Waits until one of them is free. Returns it and the descriptor that holds it."""
    while True:
        for folder in folders:
            folder.mkdir(exist_ok=True)
            lock = os.open(folder, os.O_RDONLY)
            try:
                fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
                return folder, lock
            except BlockingIOError:
                os.close(lock)
        time.sleep(0.2)


class WinePrefix:
    def __init__(self, original, name):
        """Waits for a free place; then WINEPREFIX names the copy."""
        places = [original.with_name(f"{original.name}-{name}-{number}") for number in range(1, PLACES + 1)]
        self.path, self._lock = lock_one_of(places)
        os.environ["WINEPREFIX"] = str(self.path)
        self.empty()
        shutil.copytree(
            original,
            self.path,
            symlinks=True,
            dirs_exist_ok=True,
            ignore=temporary_files,
            copy_function=link_or_copy_registry,
        )

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
