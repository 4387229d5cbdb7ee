"""Units whose settings are hard to write."""

import contextlib
import os
import resource

from unit import MAIN, SETTINGS_FOLDERS, read, settings_files, write


# Each prepares a unit as it left the factory and cleans up what reset() would not.


@contextlib.contextmanager
def read_only_files():
    for path in settings_files():
        os.chmod(path, 0o400)
    yield


@contextlib.contextmanager
def read_only_folders():
    for folder in SETTINGS_FOLDERS:
        os.chmod(folder, 0o555)
    yield
    for folder in SETTINGS_FOLDERS:
        os.chmod(folder, 0o755)


@contextlib.contextmanager
def other_modes():
    for i, path in enumerate(settings_files()):
        os.chmod(path, (0o600, 0o666, 0o640)[i % 3])
    yield


def move(path, target):
    write(target, read(path))
    os.chmod(target, 0o640)
    os.unlink(path)
    os.symlink(target, path)


@contextlib.contextmanager
def linked():
    for path in settings_files():
        move(path, "/elsewhere/" + os.path.basename(path))
    yield


@contextlib.contextmanager
def dangling():
    for path in settings_files():
        os.unlink(path)
        os.symlink("/elsewhere/nothing", path)
    yield


@contextlib.contextmanager
def loop():
    for path in settings_files():
        os.unlink(path)
        os.symlink(path, path)
    yield


@contextlib.contextmanager
def mount_point():
    move(MAIN, "/mounted/settings.xml")
    yield


def small_disk(pages):
    """With that many pages free."""
    @contextlib.contextmanager
    def prepare():
        for path in settings_files():
            move(path, "/small/" + os.path.basename(path))
        with contextlib.suppress(OSError), open("/small/filler", "wb", 0) as file:
            while True:
                file.write(b"x" * 4096)
        os.truncate("/small/filler", os.path.getsize("/small/filler") - 4096 * pages)
        yield
    return prepare


def limited(size):
    """For Popen: no file may become longer than that."""
    return {"preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))}
