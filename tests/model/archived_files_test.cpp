#include <filesystem>
#include <string>

#include "model/library/opening/archived_mail_opening.h"
#include "model/library/opening/attachment_flow.h"
#include "model/model_test.h"

namespace corvane {
namespace {

using testing::ModelTest;
using testing::waitUntilIdle;

constexpr const char* mail = "From: a@b\r\nContent-Type: multipart/mixed; boundary=b\r\n\r\n"
                             "--b\r\nContent-Disposition: attachment; filename=\"a.txt\"\r\n\r\nplain\r\n"
                             "--b\r\nContent-Disposition: attachment; filename=\"a.pdf\"\r\n\r\n#!/bin/sh\r\n"
                             "--b--\r\n";

class ArchivedFiles : public ModelTest {
  protected:
    ArchivedFiles() {
        platform_.runtimes = {"/usr/bin/python3"};
        home_.write("Archive/2014/a.eml", mail);
        entry_.locationRootPath = SharedText(home_.at("Archive"));
        entry_.record.id = SharedText("mid:a");
        entry_.record.emlRelativePath = SharedText("2014/a.eml");
    }

    void open() {
        opening_.openArchivedEmail(entry_);
        EXPECT_EQ(opening_.openingArchiveID(), entry_.id());
        waitUntilIdle(context_.tasks);
        EXPECT_EQ(opening_.openingArchiveID(), std::nullopt);
    }

    // What the user is told, or what the desktop was asked for.
    std::string openedAttachment(const std::string& name) {
        std::string told;
        attachments_.openAttachment({entry_, name},
                                    [&](const auto& note) { told = note ? *note : note.error(); });
        waitUntilIdle(context_.tasks);
        return told.empty() ? platform_.askedOfDesktop().back() : told;
    }

    ModelContext context_{platform_};
    ArchivedMailOpening opening_{context_};
    AttachmentFlow attachments_{context_};
    ArchivedEntry entry_;
};

TEST_F(ArchivedFiles, AMailOpensAndWhatHappenedToOneThatDoesNotIsTold) {
    open();
    EXPECT_EQ(platform_.askedOfDesktop(), std::vector{"open " + home_.at("Archive/2014/a.eml")});
    EXPECT_EQ(opening_.openArchiveError(), "");
    std::filesystem::remove(home_.at("Archive/2014/a.eml"));
    open();
    EXPECT_TRUE(opening_.openArchiveError().starts_with("这封归档邮件的文件在 归档位置 上已经找不到了"));
    home_.write("Archive/2014/.a.eml.icloud", "");
    opening_.openArchivedEmail(entry_);
    opening_.cancel();
    waitUntilIdle(context_.tasks);
    EXPECT_FALSE(opening_.outcome().has_value());
    std::filesystem::rename(home_.at("Archive"), home_.at("Pulled"));
    open();
    EXPECT_TRUE(opening_.openArchiveError().starts_with("无法从 归档位置 取回这封归档邮件"));
    EXPECT_EQ(platform_.askedOfDesktop().size(), 1U);
}

TEST_F(ArchivedFiles, AnAttachmentOpensUnlessTheSystemMightExecuteIt) {
    EXPECT_TRUE(openedAttachment("a.txt").starts_with("open " + platform_.temporary));
    EXPECT_TRUE(openedAttachment("a.pdf").starts_with("这种文件可能会运行程序"));
    EXPECT_TRUE(platform_.askedOfDesktop().back().starts_with("reveal " + platform_.temporary));
    EXPECT_TRUE(openedAttachment("b.txt").ends_with("没有在邮件中找到附件：b.txt"));
}

} // namespace
} // namespace corvane
