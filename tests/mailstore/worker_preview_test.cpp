#include "mailstore/scan/worker_preview.h"

#include <random>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "mime/emlx.h"
#include "mime/preview_layout.h"
#include "mime/preview_text.h"
#include "records/texts/preview_placeholders.h"
#include "support/scripted_platform.h"
#include "text/charsets/encoding.h"
#include "text/graphemes.h"

namespace corvane::mailstore {
namespace {

using testing::ScriptedPlatform;
using testing::TemporaryHome;

std::string message(std::string_view fields, std::string_view body) {
    return fmt::format("Subject: x\n{}\n\n{}", fields, body);
}

// The worker of the source tree, or one that fails.
struct PreviewWorker : ::testing::Test {
    [[nodiscard]] FileURL mail(std::string_view content) const {
        return FileURL(
            home.write("1.emlx", fmt::format("{}\n{}<?xml version=\"1.0\"?>\n<plist>\n<dict/>\n</plist>\n",
                                             content.size() + 10'000, content)));
    }

    void useFake(const std::string& answer) {
        platform.resourceFolders = {home.path()};
        home.write("mail_worker.py", fmt::format("print('''{}''')", answer));
        platform.runtimes = {"/usr/bin/python3"};
    }

    TemporaryHome home;
    ScriptedPlatform platform{home};
    MailWorkerClient worker{platform};
};

TEST_F(PreviewWorker, IsAskedFirstAndCheckedAndReplaced) {
    const FileURL file = mail("Subject: x\n\nour own");
    EXPECT_EQ(previewText(worker, file), "our own");
    useFake(R"({"ok": true, "preview": "of the worker"})");
    EXPECT_EQ(previewText(worker, file), "of the worker");
    for (const char* answer :
         {R"({"ok": true, "preview": "Content-Type: x"})", R"({"ok": false})", "garbage"}) {
        useFake(answer);
        EXPECT_EQ(previewText(worker, file), "our own") << answer;
    }
    const auto encoded =
        mail(message("Content-Transfer-Encoding: base64", text::base64Encoded("编码的正文") + "\n"));
    EXPECT_EQ(previewText(worker, encoded), "编码的正文");
    EXPECT_THROW(previewText(worker, FileURL(home.at("missing"))), mime::MessageFileError);
}

TEST_F(PreviewWorker, AgreesWithTheFallbackOnPlainMail) {
    platform.runtimes = {"/usr/bin/python3"};
    std::mt19937 random(11);
    const std::vector<std::string> words = {"word",  "longer", "mail", "归档", "邮件",
                                            "naïve", "ende.",  "\n",   "\n",   " "};
    std::vector<FileURL> files;
    std::vector<std::string> ours;
    for (int i = 0; i < 120; ++i) {
        std::string text;
        for (std::size_t w = 0; w < 1 + random() % 90; ++w) text += words[random() % words.size()] + " ";
        std::string body = message("Content-Type: text/plain; charset=utf-8", text);
        if (i % 3 == 1)
            body = message("Content-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: base64",
                           text::base64Encoded(text));
        if (i % 3 == 2)
            body = message(
                "Content-Type: multipart/alternative; boundary=b",
                fmt::format("--b\n{}\n--b\nContent-Type: text/html; charset=utf-8\n\n<p>{}</p>\n--b--\n",
                            body.substr(body.find('\n') + 1), text));
        files.emplace_back(home.write(fmt::format("{}.eml", i), body));
        ours.push_back(mime::previewText(body));
    }
    const auto texts = worker.bodyTextBatch(files, mime::previewByteLimit);
    for (std::size_t i = 0; i < files.size(); ++i) {
        std::string theirs = mime::normalizedPreviewFormatting(texts.at(files[i].path()));
        if (theirs.empty()) theirs = emptyBodyPreviewPlaceholder;
        EXPECT_EQ(text::graphemePrefix(theirs, 280), ours[i]) << testing::readWhole(files[i].path().str());
    }
}

} // namespace
} // namespace corvane::mailstore
