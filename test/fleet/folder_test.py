"""Tests of folder.py: a package comes and goes, and what is not its own stays."""

import hashlib
import io
import os
import shutil
import subprocess
import tarfile
import tempfile
import unittest

from files import folder


class Folder(unittest.TestCase):
    def setUp(self):
        self.work = os.path.realpath(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.work, True)
        self.parent = self.work + "/opt"
        self.around = self.parent + "/varn-firmware"
        os.mkdir(self.parent, 0o755)
        self.request = {"parent": self.parent, "bytes": "1"}

    def make(self):
        return folder.make(self.request)["folder"]

    def archive(self, path, *members):
        with tarfile.open(path + "/.archive.tar", "w") as tar:
            for member in members:
                tar.addfile(member, io.BytesIO(b"x" * member.size))
        with open(path + "/.archive.tar", "rb") as file:
            return hashlib.sha256(file.read()).hexdigest()

    def member(self, name, kind=tarfile.REGTYPE):
        member = tarfile.TarInfo(name)
        member.type, member.mode = kind, 0o755
        member.size = 1 if kind == tarfile.REGTYPE else 0
        return member

    def test_a_second_one_removes_the_first(self):
        first = self.make()
        self.assertEqual(0o700, os.stat(self.around).st_mode & 0o777)
        second = self.make()
        self.assertEqual([os.path.basename(second)], os.listdir(self.around))
        self.assertNotEqual(first, second)

    def test_it_removes_nothing_without_its_prefix_and_its_marker(self):
        os.makedirs(self.around + "/package-x", 0o700)
        os.makedirs(self.around + "/other", 0o700)
        open(self.around + "/other/.varn_firmware", "w").close()
        os.makedirs(self.around + "/package-y", 0o700)
        os.symlink("/etc/passwd", self.around + "/package-y/.varn_firmware")
        os.symlink(self.work, self.around + "/package-z")
        made = self.make()
        self.assertEqual({"package-x", "other", "package-y", "package-z", os.path.basename(made)},
                         set(os.listdir(self.around)))

    def test_it_removes_no_folder_that_somebody_works_in(self):
        first = self.make()
        with subprocess.Popen(["sleep", "100"], cwd=first) as process:
            self.make()
            self.assertTrue(os.path.exists(first))
            process.kill()
        self.make()
        self.assertFalse(os.path.exists(first))

    def test_it_removes_nothing_behind_a_mount(self):
        first = self.make()
        os.mkdir(first + "/a b")
        os.mkdir(self.work + "/real")
        open(self.work + "/real/file", "w").close()
        script = "import sys; sys.path[:0] = sys.argv[3:]; import folder; folder.remove({'folder': sys.argv[1]})"
        files = os.path.dirname(folder.__file__)
        done = subprocess.run(
            ["unshare", "--mount", "sh", "-c", 'mount --bind "$2" "$1/a b" && exec python3 -c "$0" "$@"',
             script, first, self.work + "/real", files], check=False)
        self.assertEqual(0, done.returncode)
        self.assertTrue(os.path.exists(self.work + "/real/file"))
        self.assertTrue(os.path.exists(first))

    def test_it_refuses_what_others_may_write_to(self):
        os.chmod(self.parent, 0o777)
        self.assertRaisesRegex(folder.Refused, "others may write", self.make)
        os.chmod(self.parent, 0o755)
        os.mkdir(self.around)
        os.chown(self.around, 1000, -1)
        self.assertRaisesRegex(folder.Refused, "somebody else's", self.make)

    def test_it_refuses_a_link_and_changes_nothing_at_its_end(self):
        os.mkdir(self.work + "/real")
        os.chmod(self.work + "/real", 0o755)
        os.symlink(self.work + "/real", self.around)
        self.assertRaisesRegex(folder.Refused, "symbolic link", self.make)
        self.assertEqual(0o755, os.stat(self.work + "/real").st_mode & 0o777)

    def test_it_says_what_is_missing(self):
        self.request["parent"] = self.work + "/nowhere"
        self.assertRaisesRegex(folder.Refused, "is missing; make it", self.make)
        self.request.update(parent=self.parent, bytes=str(10 ** 18))
        self.assertRaisesRegex(folder.Refused, "bytes left", self.make)

    def test_it_unpacks_what_was_verified_and_nothing_else(self):
        made = self.make()
        checksum = self.archive(made, self.member("tool", tarfile.DIRTYPE), self.member("tool/varnmenu"))
        with self.assertRaisesRegex(folder.Refused, "not the package that was verified"):
            folder.unpack({"folder": made, "sha256": "0" * 64})
        self.assertEqual({"tool": made + "/tool"}, folder.unpack({"folder": made, "sha256": checksum}))
        self.assertEqual({".varn_firmware", "tool"}, set(os.listdir(made)))
        self.assertTrue(os.access(made + "/tool/varnmenu", os.X_OK))

    def test_it_unpacks_files_and_folders_only(self):
        made = self.make()
        link = self.member("link", tarfile.SYMTYPE)
        link.linkname = "/etc"
        checksum = self.archive(made, link)
        with self.assertRaisesRegex(folder.Refused, "neither a file nor a folder"):
            folder.unpack({"folder": made, "sha256": checksum})

    def test_it_leaves_nothing(self):
        made = self.make()
        self.assertTrue(folder.remove({"folder": made})["removed"])
        self.assertFalse(os.path.exists(self.around))


if __name__ == "__main__":
    unittest.main()
