"""What is said of wrong arguments, the helps, completions and the manual page."""

import json
import os
import re
import subprocess
import unittest

from cli_support import CLI, CliCase


def run(*arguments, **options):
    return subprocess.run([CLI, *arguments], capture_output=True, text=True, timeout=60, **options)


def commands():
    return re.findall(r"^  ([a-z]+) ", run("--help").stdout.split("命令：")[1], re.MULTILINE)


class Usage(CliCase):
    def test_mistakes_are_told_in_the_users_language_with_status_two(self):
        for arguments in ([], ["nonsense"], ["search"], ["search", "a", "b"], ["search", "a", "--nothing"],
                          ["search", "a", "--limit", "-1"], ["search", "a", "--limit"], ["scan", "--max-year", "x"],
                          ["messages", "--sort", "size"], ["--home", "/no/such/folder", "accounts"],
                          ["index", "--force=maybe"], ["show", "a", "--query", "a", "--query", "b"]):
            done = run(*arguments)
            self.assertEqual((done.returncode, done.stdout), (2, ""), arguments)
            told = re.sub(r"corvane-cli|--[a-z-]+|[/\w]+/folder", "", done.stderr)
            self.assertRegex(told, "[一-龥]")
            self.assertNotRegex(told, r"[A-Za-z]+ [A-Za-z]+ [A-Za-z]+", "no English sentence")

    def test_a_reader_that_goes_away_ends_nothing(self):
        reader, writer = os.pipe()
        os.close(reader)
        for arguments in (["--help"], ["--home", str(self.folder), "--json", "locations"]):
            done = subprocess.run([CLI, *arguments], stdout=writer, stderr=subprocess.PIPE, text=True, timeout=60)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
        os.close(writer)


class Splitting(CliCase):
    def test_a_text_is_cut_as_the_reading_pane_does(self):
        text = "你好，合同见附件\n--\n张三\n发件人: 李四\n收件人: 甲；乙；丙；丁；戊\n旧的"
        done = subprocess.run([CLI, "--json", "split", "--query", "合同", "-"], input=text, capture_output=True,
                              text=True, timeout=60)
        shown = json.loads(done.stdout)
        self.assertEqual((shown["body"], shown["signature"], shown["canCollapse"]), ("你好，合同见附件", "张三", False))
        self.assertEqual("".join(s["text"] for s in shown["segments"] if s["style"] == "quoted"),
                         "发件人: 李四\n收件人: 甲；乙；丙；丁  …及其他 1 个\n旧的")
        self.assertIn("合同", shown["snippet"])
        self.assertTrue(shown["preview"].startswith("你好，合同见附件"))


if __name__ == "__main__":
    unittest.main()
