"""Where the tests find the programs of the role: "from files import record"."""

import os
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "../../fleet/roles/varn_firmware/files"))
sys.dont_write_bytecode = True

import folder  # noqa: E402
import outcome  # noqa: E402
import package  # noqa: E402
import record  # noqa: E402
import report  # noqa: E402

__all__ = ["folder", "outcome", "package", "record", "report"]
