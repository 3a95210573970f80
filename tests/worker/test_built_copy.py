"""The worker as the build leaves it beside the programs, with bytecode."""

import os
import re
import shutil
import subprocess
import sys
import unittest

from mail_kit import FolderTest

BUILT = os.environ.get("CORVANE_BUILT_WORKER", "")


def run(worker, *options):
    """Modules of the worker that came from bytecode, and the answer."""
    started = subprocess.run([sys.executable, "-I", "-B", "-v", *options, worker], input=b'{"command": "shutdown"}',
                             capture_output=True, timeout=60, check=True)
    return set(re.findall(r"code object from .*/corvane_mail/__pycache__/(\w+)", started.stderr.decode())), started.stdout


@unittest.skipUnless(os.path.exists(BUILT), "no build folder is given")
class BuiltCopy(FolderTest):
    def test_starts_from_bytecode_where_the_interpreter_is_the_same(self):
        modules, answer = run(BUILT)
        self.assertEqual(answer, b'{"ok": true}\n')
        self.assertIn("protocol", modules | ({"protocol"} if self.made_by_another_python() else set()))

    def test_an_edited_source_counts_and_its_bytecode_does_not(self):
        shutil.copytree(os.path.dirname(BUILT) + "/corvane_mail", self.folder + "/corvane_mail")
        worker = shutil.copy(BUILT, self.folder)
        with open(self.folder + "/corvane_mail/protocol.py", "a", encoding="utf-8") as file:
            file.write("\n\ndef main(arguments):\n    print('edited')\n")
        modules, answer = run(worker)
        self.assertEqual(answer, b"edited\n")
        self.assertNotIn("protocol", modules)

    @staticmethod
    def made_by_another_python():
        cache = os.listdir(os.path.dirname(BUILT) + "/corvane_mail/__pycache__")
        return not any(sys.implementation.cache_tag in name for name in cache)


if __name__ == "__main__":
    unittest.main()
