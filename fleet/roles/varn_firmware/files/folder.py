"""Handles the package's folder on a server: makes it, unpacks into it, and removes it.

  python3 folder.py ACTION REQUEST      prints a JSON object; REQUEST is one, too

  check    whether PARENT is fit for a package: it exists, has room, and programs may run there
  make     removes the packages that earlier runs have left, and makes a folder for another one
  unpack   unpacks the archive that lies in the folder, if it is the right one
  remove   removes the folder, and the one around it, if that is empty

Nothing is removed but what this program has made: folders with its PREFIX and MARKER, on the same file
system, through no link and no mount. Standard library only, for each Python from 3.5 on.
"""

import glob
import hashlib
import json
import os
import shutil
import stat
import sys
import tarfile
import tempfile

AROUND = "varn-firmware"
PREFIX = "package-"
MARKER = ".varn_firmware"
ARCHIVE = ".archive.tar"


class Refused(Exception):
    """With the sentence that the administrator is to read."""


def require_folder(path):
    """No link, root's alone: nobody else may change what root is to run."""
    found = os.lstat(path)
    if stat.S_ISLNK(found.st_mode):
        raise Refused("{} is a symbolic link; set varn_firmware_parent to a real folder".format(path))
    if not stat.S_ISDIR(found.st_mode):
        raise Refused("{} is not a folder; set varn_firmware_parent to another one".format(path))
    if found.st_uid != os.geteuid() or found.st_mode & 0o022:
        raise Refused("{} is somebody else's, or others may write there; chown root, chmod go-w".format(path))


def check(request):
    parent = os.path.realpath(request["parent"])
    if not os.path.isdir(parent):
        raise Refused("{} is missing; make it, or set varn_firmware_parent".format(request["parent"]))
    require_folder(parent)
    around = os.path.join(parent, AROUND)
    if os.path.lexists(around):
        require_folder(around)
    room = os.statvfs(parent)
    if room.f_flag & os.ST_NOEXEC:
        raise Refused("{} is mounted noexec, so the menu cannot run; set varn_firmware_parent".format(parent))
    if room.f_bavail * room.f_frsize < int(request["bytes"]):
        raise Refused("{} has {} bytes left, and {} are needed; make room there, or set varn_firmware_parent".format(
            parent, room.f_bavail * room.f_frsize, request["bytes"]))
    return {"around": around}


def mount_points():
    """Spaces and the like are written as \\040."""
    with open("/proc/self/mountinfo", "rb") as file:
        return [line.split()[4].decode("unicode_escape").encode("latin-1").decode(errors="surrogateescape")
                for line in file]


def is_below(path, folder):
    return path == folder or path.startswith(folder + "/")


def is_in_use(folder):
    """Whether a process works there: a menu, or a core program that has outlived its session."""
    for link in glob.glob("/proc/[0-9]*/cwd"):
        try:
            if is_below(os.readlink(link), folder):
                return True
        except OSError:
            pass  # it has ended
    return False


def may_be_removed(path):
    found = os.lstat(path)
    marker = os.path.join(path, MARKER)
    return (stat.S_ISDIR(found.st_mode) and found.st_uid == os.geteuid()
            and os.path.basename(path).startswith(PREFIX)
            and os.path.lexists(marker) and stat.S_ISREG(os.lstat(marker).st_mode)
            and not any(is_below(point, path) for point in mount_points())
            and not is_in_use(path))


def remove_package(path):
    """shutil.rmtree() follows no link, as all is opened below a descriptor."""
    if may_be_removed(path):
        shutil.rmtree(path)
        return True
    return False


def make(request):
    around = check(request)["around"]
    if not os.path.lexists(around):
        os.mkdir(around, 0o700)
    require_folder(around)
    removed = [name for name in sorted(os.listdir(around)) if remove_package(os.path.join(around, name))]
    check(request)
    folder = tempfile.mkdtemp(prefix=PREFIX, dir=around)
    with open(os.path.join(folder, MARKER), "w"):
        pass
    return {"folder": folder, "archive": os.path.join(folder, ARCHIVE), "removed": removed}


def unpack(request):
    folder = request["folder"]
    path = os.path.join(folder, ARCHIVE)
    with open(path, "rb") as file:
        if hashlib.sha256(file.read()).hexdigest() != request["sha256"]:
            raise Refused("what has been copied is not the package that was verified; run it again")
        file.seek(0)
        with tarfile.open(fileobj=file) as archive:
            archive.extraction_filter = getattr(tarfile, "data_filter", None)  # newer Pythons want to be told
            for member in archive:
                if not member.isreg() and not member.isdir():
                    raise Refused("{} in the package is neither a file nor a folder".format(member.name))
                archive.extract(member, folder)
    os.remove(path)
    return {"tool": os.path.join(folder, "tool")}


def remove(request):
    removed = remove_package(request["folder"])
    try:
        os.rmdir(os.path.dirname(request["folder"]))
    except OSError:
        pass  # another run has its package there
    return {"removed": removed}


def main(action, request):
    os.umask(0o077)
    try:
        actions = {"check": check, "make": make, "unpack": unpack, "remove": remove}
        print(json.dumps(actions[action](json.loads(request))))
    except (Refused, OSError, tarfile.TarError) as failure:
        sys.exit(str(failure))


if __name__ == "__main__":
    main(*sys.argv[1:])
