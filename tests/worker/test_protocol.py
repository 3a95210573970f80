"""The worker as a process: one request, a session, and what must not stop either."""

import base64
import json
import os
import subprocess
import sys
import unittest

from mail_kit import WORKER, FolderTest, attached, mail, multipart, part, run_worker

PDF = bytes(range(256)) * 9


def message(text="正文", name="报告.pdf"):
    return mail(multipart("mixed", part(text), attached(("Content-Disposition: attachment; filename=\"%s\"" % name).encode(), PDF)))


class Session:
    """A worker that was started with --serve."""

    def __init__(self):
        self.process = subprocess.Popen([sys.executable, "-I", "-B", WORKER, "--serve"], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)

    def ask(self, request):
        line = request if isinstance(request, bytes) else json.dumps(request).encode()
        self.process.stdin.write(line + b"\n")
        self.process.stdin.flush()
        return json.loads(self.process.stdout.readline())

    def close(self):
        self.process.stdin.close()
        self.process.stdout.close()
        return self.process.wait(timeout=30)


class OneShot(FolderTest):
    def ask(self, **request):
        status, output, errors = run_worker(request)
        self.assertEqual((status, output.count(b"\n")), (0, 1), errors)
        return json.loads(output)

    def test_every_command(self):
        path = self.file("a.eml", message())
        self.assertEqual(self.ask(command="preview", file_path=path, max_bytes=2097152), {"ok": True, "preview": "正文", "is_html": False})
        self.assertEqual(self.ask(command="bodytext_batch", file_paths=[path]), {"ok": True, "items": [{"path": path, "text": "正文"}]})
        self.assertEqual(self.ask(command="attachments", file_path=path, max_bytes=8388608), {"ok": True, "attachments": [
            {"file_name": "报告.pdf", "content_type": "application/pdf", "estimated_size": len(PDF)}]})
        answer = self.ask(command="attachment_data", file_path=path, file_name="报告.pdf", max_bytes=209715200)
        self.assertEqual(base64.b64decode(answer["attachment_data_base64"], validate=True), PDF)
        self.assertEqual(self.ask(command="shutdown"), {"ok": True})
        self.assertEqual(self.ask(command="bodytext_batch", file_paths=[]), {"ok": True, "items": []})

    def test_previews(self):
        quote = "<p>new</p><blockquote type=cite>old</blockquote>"
        path = self.file("a.emlx", b"9\n" + mail(part(quote, "text/html")))
        self.assertEqual(self.ask(command="preview", file_path=path), {"ok": True, "preview": "new\n\nold", "is_html": True})
        path = self.file("b.eml", mail(attached(b"Content-Disposition: attachment; filename=a")))
        self.assertEqual(self.ask(command="preview", file_path=path)["preview"], "暂无正文预览")
        self.assertEqual(self.ask(command="preview", message_text="Subject: x\n\n你好")["preview"], "你好")

    def test_errors_are_told_in_chinese(self):
        path = self.file("a.eml", message())
        secret = self.file("secret.eml", message())
        os.chmod(secret, 0)
        cases = [({"command": "preview", "file_path": path + "x"}, "找不到邮件文件：" + path + "x"), ({"command": "preview", "file_path": self.folder}, "不是普通文件"),
                 ({"command": "preview"}, "请求缺少字段：file_path"), ({"command": "preview", "file_path": "a\0b"}, "无法打开邮件文件"),
                 ({"command": "nothing"}, "未知命令：nothing"), ({}, "未知命令"), ({"command": "preview", "file_path": path, "max_bytes": -1}, "max_bytes"),
                 ({"command": "bodytext_batch", "file_paths": "x"}, "file_paths"), ({"command": "bodytext_batch", "file_paths": [1]}, "file_paths"),
                 ({"command": "attachment_data", "file_path": path, "file_name": "no.pdf"}, "没有在邮件中找到附件：no.pdf"),
                 ({"command": "attachment_data", "file_path": path, "file_name": "报告.pdf", "max_bytes": len(PDF) - 1}, "附件超过大小上限：报告.pdf")]
        if os.geteuid():
            cases.append(({"command": "preview", "file_path": secret}, "没有权限读取邮件文件"))
        for request, expected in cases:
            answer = self.ask(**request)
            self.assertIs(answer["ok"], False)
            self.assertIn(expected, answer["error"], request)
        for data in (b"", b"{", b"[1]", b"\xff", b"null", b"[" * 100000, b'{"command":' + b"9" * 5000 + b"}"):
            status, output, _ = run_worker(data)
            self.assertEqual((status, json.loads(output)["ok"]), (0, False), data[:20])

    def test_special_files_never_block(self):
        fifo = os.path.join(self.folder, "pipe.eml")
        os.mkfifo(fifo)
        link = os.path.join(self.folder, "link.eml")
        os.symlink(self.file("a.eml", message()), link)
        items = self.ask(command="bodytext_batch", file_paths=[fifo, "/dev/zero", link, self.folder])["items"]
        self.assertEqual([item["text"] for item in items], ["", "", "正文", ""])

    def test_a_broken_message_costs_only_itself(self):
        bad = [self.file("bad%d.eml" % number, data) for number, data in enumerate((
            b"", b"\0" * 5000, os.urandom(5000), b"Content-Type: multipart/mixed; boundary=b\n\n" + b"--b\n" * 20000))]
        signed = part("x")
        for _ in range(400):
            signed = part(b"\x06\x09\x2a\x86\x48\x86\xf7\x0d\x01\x07\x01\xa0\x80\x24\x80\x04\x83" + len(signed).to_bytes(3, "big") + signed,
                          "application/pkcs7-mime")
        paths = [self.file("good.eml", message()), *bad, self.file("deep.eml", signed), self.folder + "/missing.eml", self.file("last.eml", message("完"))]
        items = self.ask(command="bodytext_batch", file_paths=paths + paths[:1], max_bytes=2097152)["items"]
        self.assertEqual([item["path"] for item in items], paths + paths[:1])
        self.assertEqual([items[0]["text"], items[-2]["text"], items[-1]["text"]], ["正文", "完", "正文"])

    def test_reads_no_more_than_it_may(self):
        path = self.file("a.eml", mail(part("x" * 5000 + "end")))
        text = self.ask(command="bodytext_batch", file_paths=[path], max_bytes=1000)["items"][0]["text"]
        self.assertTrue(0 < len(text) < 1000 and set(text) == {"x"})
        cut = self.file("b.eml", mail(part("正文" * 500)))
        for limit in range(200, 206):
            text = self.ask(command="bodytext_batch", file_paths=[cut], max_bytes=limit)["items"][0]["text"]
            self.assertLessEqual(set(text), {"正", "文"})
        self.assertEqual(self.ask(command="bodytext_batch", file_paths=[cut], max_bytes=0)["items"][0]["text"], "")

    def test_an_attachment_cut_off_by_the_limit_is_refused_not_shortened(self):
        path = self.file("a.eml", mail(multipart("mixed", part("x"), attached(b"Content-Disposition: attachment; filename=a", b"x" * 9_000_000))))
        answer = self.ask(command="attachment_data", file_path=path, file_name="a", max_bytes=1000)
        self.assertEqual(answer, {"ok": False, "error": "附件超过大小上限：a"})

    def test_paths_come_back_as_they_were_sent(self):
        odd = self.folder + "/名 e\u0301\u2028\udc80.eml"
        with open(os.fsencode(odd), "wb") as file:
            file.write(message())
        self.assertEqual(self.ask(command="bodytext_batch", file_paths=[odd])["items"], [{"path": odd, "text": "正文"}])

    def test_memory_stays_near_the_limit(self):
        path = self.file("big.eml", b"Content-Type: text/html\n\n" + b"<p>text" * 40_000_000)
        script = ("import resource, subprocess, sys; subprocess.run(sys.argv[1:], stdin=sys.stdin, stdout=subprocess.DEVNULL, check=True);"
                  "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)")
        request = json.dumps({"command": "bodytext_batch", "file_paths": [path] * 3, "max_bytes": 2097152}).encode()
        run = subprocess.run([sys.executable, "-c", script, sys.executable, "-I", "-B", WORKER], input=request, capture_output=True, check=True)
        self.assertLess(int(run.stdout), 250_000)


class Serving(FolderTest):
    def setUp(self):
        super().setUp()
        self.session = Session()
        self.addCleanup(self.session.close)

    def test_a_session_goes_on_after_every_kind_of_trouble(self):
        path = self.file("a.eml", message())
        request = {"command": "attachments", "file_path": path, "max_bytes": 8388608}
        for trouble in (b"{", b"\xff\xfe", b"[]", {"command": "preview"}, {"command": "attachments", "file_path": path + "x"},
                        {"command": "bodytext_batch", "file_paths": [path, "x"]}, b"", b"   "):
            if trouble in (b"", b"   "):
                self.session.process.stdin.write(trouble + b"\n")
            else:
                self.session.ask(trouble)
            self.assertEqual(self.session.ask(request)["attachments"][0]["file_name"], "报告.pdf", trouble)

    def test_shutdown_is_answered_and_ends_the_process(self):
        self.assertEqual(self.session.ask({"command": "shutdown"}), {"ok": True})
        self.assertEqual(self.session.process.wait(timeout=30), 0)

    def test_the_end_of_the_input_ends_the_process(self):
        self.assertEqual(self.session.close(), 0)

    def test_a_line_too_long_is_refused_and_passed_over(self):
        path = self.file("a.eml", message())
        answer = self.session.ask(b'{"command": "' + b"x" * (65 << 20) + b'"}')
        self.assertEqual(answer, {"ok": False, "error": "请求过长"})
        self.assertEqual(self.session.ask({"command": "preview", "file_path": path})["preview"], "正文")


if __name__ == "__main__":
    unittest.main()
