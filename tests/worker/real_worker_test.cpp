#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "text/encoding.h"
#include "worker/fake_worker.h"
#include "worker/worker_session.h"

namespace corvane {
namespace {

using ::testing::HasSubstr;

constexpr std::string_view attachedMail = "From: a@example.org\nContent-Type: multipart/mixed; boundary=b\n\n"
                                          "--b\nContent-Type: text/plain; charset=utf-8\n\n正文\n"
                                          "--b\nContent-Type: application/pdf; name=\"a.pdf\"\n"
                                          "Content-Transfer-Encoding: base64\n\nQUJD\n--b--\n";

// The worker of the source tree, with the runtime of this system.
struct RealWorker : ::testing::Test {
    RealWorker() { platform.runtimes = {"/usr/local/bin/python3", "/usr/bin/python3"}; }

    [[nodiscard]] FileURL mail(const std::string& name, std::string_view text) const {
        return FileURL(home.write(name, text));
    }

    testing::TemporaryHome home;
    testing::ScriptedPlatform platform{home};
    MailWorkerClient client{platform};
};

TEST_F(RealWorker, AnswersEveryCommand) {
    const FileURL file = mail("邮件 1.eml", attachedMail);
    const FileURL other = mail("2.emlx", "22\nSubject: x\n\nsecond\ntext");
    EXPECT_EQ(client.previewText(file, 1 << 20), "正文");
    const auto texts = client.bodyTextBatch({other, file, FileURL(home.at("missing.eml"))}, 1 << 20);
    EXPECT_EQ(texts.at(file.path()), "正文");
    EXPECT_THAT(texts.at(other.path()), HasSubstr("second"));
    const auto data = client.runRequest({.command = "attachment_data",
                                         .filePath = file.path().str(),
                                         .maxBytes = 209'715'200,
                                         .fileName = "a.pdf"},
                                        client.limits().quickRun);
    EXPECT_EQ(text::base64Decoded(data.attachmentDataBase64.value()), "ABC");

    MailWorkerClient::Session session(client);
    for (int i = 0; i < 3; ++i) {
        const auto list = session.attachments(file, 8 << 20);
        ASSERT_EQ(list.size(), 1U);
        EXPECT_EQ(list[0].fileName, "a.pdf");
        EXPECT_EQ(list[0].contentType, "application/pdf");
        EXPECT_EQ(list[0].estimatedSize, 3);
        EXPECT_THAT(testing::errorOf([&] { session.attachments(FileURL(home.at("missing")), 8); }).detail(),
                    HasSubstr("找不到邮件文件"));
    }
    session.close();
    EXPECT_FALSE(testing::hasChildren());
}

} // namespace
} // namespace corvane
