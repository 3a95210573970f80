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

    def test_every_option_stands_in_help_completions_and_the_manual_page(self):
        printed = {kind: run("--print", kind).stdout for kind in ("bash", "zsh", "fish", "man")}
        printed["man"] = printed["man"].replace("\\-", "-")
        names = commands()
        self.assertIn("search", names)
        for command in names:
            shown = run(command, "--help").stdout
            examples = shown.split("示例：\n")[1]
            self.assertEqual(len(re.findall(rf"^  corvane-cli {command} ?.*\n      \S", examples, re.MULTILINE)), 2)
            for option in re.findall(r"^  (?:-\w, )?--([a-z-]+)", shown, re.MULTILINE):
                for kind, text in printed.items():
                    form = f" -l {option} " if kind == "fish" else f"--{option}"
                    self.assertIn(form, text, (command, kind))
        for kind in ("bash", "zsh", "fish"):
            script = self.folder / kind
            script.write_text(printed[kind])
            checked = subprocess.run(["sh", "-c", f"command -v {kind} >/dev/null || exit 0; {kind} -n {script}"])
            self.assertEqual(checked.returncode, 0, kind)

    def test_bash_offers_what_fits(self):
        script = self.folder / "bash"
        script.write_text(run("--print", "bash").stdout + 'COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _corvane_cli\n'
                          'echo "${COMPREPLY[@]}"\n')
        for words, offered in (("corvane-cli sea", "search"), ("corvane-cli search x --li", "--limit"),
                               ("corvane-cli messages --sort new", "newest"),
                               ("corvane-cli --json --home / loc", "locations")):
            text = f"COMP_WORDS=({words})\n" + script.read_text()
            done = subprocess.run(["bash", "-c", text], capture_output=True, text=True)
            self.assertEqual(done.stdout.strip(), offered)

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
