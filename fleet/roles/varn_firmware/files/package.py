"""Verifies firmware packages and makes them ready to be copied: on the control node, once in a run.

  package.py RUN_FOLDER < REQUEST

REQUEST is a JSON object: "archives", and "tool", "signers" and "signer" for varnmenu-package. Prints an
object by archive: its sha256 and release, the machine that it is for, what it needs on a server in bytes, and
"package" and "package_sha256", a tar archive of exactly the files that were verified.

Exit status: 0 good, 1 a package is not. All of them are looked at before that is said.
"""

import hashlib
import json
import os
import re
import shutil
import subprocess
import sys
import tarfile
import tempfile

# The machine of an ELF program, bytes 18 and 19 of its header, as uname(2) calls it.
MACHINES = {b"\x3e\0": "x86_64", b"\xb7\0": "aarch64", b"\x15\0": "ppc64le", b"\xf3\0": "riscv64", b"\0\x16": "s390x"}
BESIDE = ("", ".sha256", ".sig")


class Bad(Exception):
    """With what is to be corrected."""


def checksum(path):
    with open(path, "rb") as file:
        return hashlib.file_digest(file, "sha256").hexdigest() if hasattr(hashlib, "file_digest") \
            else hashlib.sha256(file.read()).hexdigest()


def copy_of(archive, folder):
    """Nobody else can reach this copy: what is verified is what is used."""
    for ending in BESIDE:
        if not ending or os.path.exists(archive + ending):
            shutil.copyfile(archive + ending, os.path.join(folder, os.path.basename(archive) + ending))
    return os.path.join(folder, os.path.basename(archive))


def unpack(copy, into, request):
    """What is written is what was verified, byte by byte."""
    words = [request["tool"], "unpack", copy, "--into", into]
    words += ["--signers", request["signers"]] if request["signers"] else []
    words += ["--signer", request["signer"]] if request["signer"] else []
    try:
        done = subprocess.run(words, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    except OSError as failure:
        raise Bad(f"{failure}: install varnmenu-package(1) here, or set varn_firmware_package_tool") from None
    if done.returncode != 0:
        raise Bad(done.stdout.strip().replace(copy, os.path.basename(copy)) or f"status {done.returncode}")
    return os.path.join(into, os.listdir(into)[0])


def release_of(package):
    with open(package + "/releasefile-information.txt", encoding="utf-8-sig", errors="replace") as file:
        found = re.search(r'^VARN_RELEASE="?(.*?)"?\s*$', file.read(), re.MULTILINE)
    return found.group(1) if found else ""


def machine_of(package):
    with open(package + "/tool/varnmenu", "rb") as file:
        return MACHINES.get(file.read(20)[18:], "another one")


def pack(package, path):
    """Without names and times of this machine."""
    def anonymous(member):
        member.uid = member.gid = 0
        member.uname = member.gname = ""
        return member
    with tarfile.open(path, "w") as archive:
        archive.add(package, arcname=".", filter=anonymous)


def prepare(archive, number, folder, request):
    with tempfile.TemporaryDirectory(dir=folder) as work:
        os.mkdir(work + "/unpacked")
        copy = copy_of(archive, work)
        package = unpack(copy, work + "/unpacked", request)
        packed = f"{folder}/{number}.tar"
        pack(package, packed)
        return {"sha256": checksum(copy), "release": release_of(package), "machine": machine_of(package),
                "bytes": 2 * os.path.getsize(packed), "package": packed, "package_sha256": checksum(packed)}


def main(run_folder):
    os.umask(0o077)
    request = json.load(sys.stdin)
    folder = run_folder + "/packages"
    known = folder + "/packages.json"
    if os.path.exists(known):
        with open(known, encoding="utf-8") as file:
            print(file.read())
        return
    os.makedirs(folder, exist_ok=True)
    good, bad = {}, []
    for number, archive in enumerate(request["archives"]):
        path = os.path.realpath(os.path.expanduser(archive))
        try:
            good[archive] = prepare(path, number, folder, request)
        except (Bad, OSError, tarfile.TarError) as failure:
            bad += [f"{path}:", *str(failure).splitlines()]
    if bad:
        sys.exit("\n".join(bad))
    with open(known + ".new", "w", encoding="utf-8") as file:
        json.dump(good, file)
    os.replace(known + ".new", known)
    print(json.dumps(good))


if __name__ == "__main__":
    main(*sys.argv[1:])
