#include "mailstore/folders/mailbox_url.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mailstore/folders/message_file_index.h"
#include "mailstore/folders/store_location.h"
#include "mailstore/folders/trash_junk_mailboxes.h"
#include "mailstore/index/excluded_mailboxes.h"
#include "mailstore/property_list.h"
#include "support/temporary_home.h"

namespace corvane::mailstore {
namespace {

namespace fs = std::filesystem;

using ::testing::Optional;

TEST(StoreLocation, TakesTheFolderWithTheLargestNumber) {
    const testing::TemporaryHome home;
    EXPECT_EQ(latestMailVersionDirectoryName(home.at("missing")), "V10");
    EXPECT_EQ(latestMailVersionDirectoryName(home.makeFolder("empty")), "V10");
    for (const char* name : {"V9", "V2", "Vault", "V", "V12x", ".V99"})
        home.makeFolder(std::string("Mail/") + name);
    home.write("Mail/V11", "a plain file");
    EXPECT_EQ(latestMailVersionDirectoryName(home.at("Mail")), "V9");
    home.makeFolder("Mail/V10");
    EXPECT_EQ(latestMailVersionDirectoryName(home.at("Mail")), "V10");
}

TEST(MailboxURL, BucketsAreTheThousandsInReverse) {
    EXPECT_EQ(messageBucketPath(999), "");
    EXPECT_EQ(messageBucketPath(1000), "1");
    EXPECT_EQ(messageBucketPath(7000), "7");
    EXPECT_EQ(messageBucketPath(10000), "0/1");
    EXPECT_EQ(messageBucketPath(123456), "3/2/1");
    EXPECT_EQ(messageBucketPath(-5), "");
    EXPECT_EQ(messagesFolder("/d/Data", 999), "/d/Data/Messages");
    EXPECT_EQ(messagesFolder("/d/Data", 1000), "/d/Data/1/Messages");
}

TEST(MailboxURL, DataRootsAreFoundByTheRulesOfTheFolders) {
    const testing::TemporaryHome home;
    home.makeFolder("V10/U/INBOX.mbox/Data");
    home.makeFolder("V10/U/A.mbox/B.mbox/0/nothing");
    home.makeFolder("V10/U/A.mbox/B.mbox/1/Data");
    home.makeFolder("V10/U/A.mbox/B.mbox/2/Data");
    home.makeFolder("V10/U/已发送.mbox/Data");
    home.makeFolder("V10/U/cafe\u0301.mbox/Data");
    home.makeFolder("V10/U/100%.mbox/Data");
    home.makeFolder("V10/U/bare.mbox");
    const std::vector<std::pair<std::string, std::string>> found = {
        {"imap://U/INBOX", "INBOX.mbox/Data"},
        {"imap://U/INBOX.mbox", "INBOX.mbox/Data"},
        {"imap://me%40x:secret@U:143//INBOX/", "INBOX.mbox/Data"},
        {"imap://U/INBOX?q#f", "INBOX.mbox/Data"},
        {"local://U/A/B", "A.mbox/B.mbox/1/Data"},
        {"local://U/A%2FB", "A.mbox/B.mbox/1/Data"},
        {"imap://U/%E5%B7%B2%E5%8F%91%E9%80%81", "已发送.mbox/Data"},
        {"imap://U/caf%C3%A9", "cafe\u0301.mbox/Data"},
        {"imap://U/100%", "100%.mbox/Data"},
    };
    for (const auto& [url, folder] : found)
        EXPECT_THAT(mailboxDataRoot(url, home.path()), Optional(home.at("V10/U/" + folder))) << url;
    for (const char* url : {"", "imap://", "imap:///INBOX", "imap://U", "imap://U/", "INBOX", "imap://U/bare",
                            "imap://U/missing", "imap://X/INBOX"})
        EXPECT_EQ(mailboxDataRoot(url, home.path()), std::nullopt) << url;
}

TEST(MailboxURL, HostileURLsNeverLeaveTheVersionFolder) {
    const testing::TemporaryHome home;
    home.makeFolder("outside.mbox/Data");
    home.makeFolder("V10/U/INBOX.mbox/Data");
    home.makeFolder("V10/Data");
    fs::create_directories(home.at("V10/U/...mbox/Data"));
    for (const std::string url :
         {"imap://../outside", "imap://U/../../outside", "imap://U/%2E%2E/%2e%2e/outside",
          "imap://%2E%2E/outside", "imap://U%2F..%2F../outside", "imap://./U/INBOX", "imap://U/.",
          "imap://U/..", "imap://U/INBOX%00", "imap://U%00/INBOX", "imap://U/%FF%FE", "imap://U/\xFF",
          "imap://[::1/INBOX", "imap://U/./INBOX"})
        EXPECT_EQ(mailboxDataRoot(url, home.path()), std::nullopt) << url;
    const std::string deep(200'000, '/');
    EXPECT_EQ(mailboxDataRoot("imap://U/" + deep + "x", home.path()), std::nullopt);
    EXPECT_EQ(mailboxDataRoot("imap://U/" + std::string(100'000, 'x'), home.path()), std::nullopt);
}

TEST(MailboxURL, NamesAreShownDecoded) {
    EXPECT_EQ(mailboxName("imap://U/A/%E5%B7%B2%E5%8F%91.mbox"), "已发");
    EXPECT_EQ(mailboxName("imap://U/a.mbox.mbox/"), "a");
    EXPECT_EQ(mailboxName("imap://U/50%"), "50%");
    EXPECT_EQ(mailboxName("imap://U"), "Mail");
    EXPECT_EQ(mailboxName(""), "Mail");
    const FileURL file("/root/V10/U/INBOX.mbox/X/Data/3/Messages/3001.emlx");
    EXPECT_EQ(mailboxName(file, "/root"), "3");
    EXPECT_EQ(mailboxName(FileURL("/root/INBOX.mbox/Messages/1.emlx"), "/root"), "Mail");
    EXPECT_THAT(mailboxFolder(file), Optional(std::string("/root/V10/U/INBOX.mbox")));
    EXPECT_THAT(mailboxFolder(FileURL("/a/b.MBOX/1.emlx")), Optional(std::string("/a/b.MBOX")));
    EXPECT_EQ(mailboxFolder(FileURL("/a/b/1.emlx")), std::nullopt);
}

TEST(MailboxURL, AccountsAreMatchedWithoutRegardToCase) {
    const AccountNames names = {{"imap://AB-CD", "me"}, {"imap://", "never"}};
    EXPECT_EQ(accountOfMailbox("imap://ab-cd/INBOX", names)->second, "me");
    EXPECT_EQ(accountOfMailbox("imap://other/INBOX", names), std::nullopt);
    EXPECT_EQ(accountInfo(FileURL("/V10/ab-cd/INBOX.mbox/1.emlx"), names)->first, "imap://AB-CD");
    EXPECT_EQ(accountInfo(FileURL("/V10/xab-cd/INBOX.mbox/1.emlx"), names), std::nullopt);
}

TEST(MailboxURL, TrashIsJudgedByTheLastComponent) {
    EXPECT_TRUE(trashJunkMailboxNames().contains(normalizedMailboxName(" Deleted Messages.MBOX ")));
    EXPECT_EQ(normalizedMailboxName("Trash .mbox"), "trash");
    EXPECT_EQ(normalizedMailboxName("a.mbox.mbox"), "a.mbox");
    EXPECT_EQ(trashJunkMailboxNames().size(), 13U);
    EXPECT_EQ(mailboxExclusion({}), "");
    EXPECT_EQ(mailboxExclusion({7, 3}), "AND m.mailbox NOT IN (3,7)");
}

// A dictionary of one key and one object, as Apple writes it.
std::string binaryList(const std::string& value) {
    std::string bytes = "bplist00";
    const std::string key = "MailboxHasBeenImported";
    const char dictionary = static_cast<char>(bytes.size());
    bytes += std::string("\xD1\x01\x02", 3);
    const char keyAt = static_cast<char>(bytes.size());
    bytes += std::string("\x5F\x10\x16", 3) + key;
    const char valueAt = static_cast<char>(bytes.size());
    bytes += value;
    const char table = static_cast<char>(bytes.size());
    bytes += {dictionary, keyAt, valueAt};
    bytes += std::string(6, '\0') + std::string("\x01\x01", 2);
    bytes += std::string(7, '\0') + '\x03' + std::string(8, '\0') + std::string(7, '\0') + table;
    return bytes;
}

TEST(MailboxURL, TheImportedFlagIsReadFromEitherFormOfPropertyList) {
    const auto xml = [](const std::string& value) {
        return R"(<?xml version="1.0"?><!DOCTYPE plist PUBLIC "x" "y"><plist version="1.0"><dict>)"
               "<!-- <key>MailboxHasBeenImported</key><false/> -->"
               "<key>Other</key><dict><key>MailboxHasBeenImported</key><string>no</string></dict>"
               "<key>MailboxHasBeenImported</key>" +
               value + "</dict></plist>";
    };
    const std::vector<std::pair<std::string, bool>> cases = {
        {xml("<true/>"), true},
        {xml("<string>YES</string>"), true},
        {xml("<string>&#x79;&#101;s</string>"), true},
        {xml("<string>1</string>"), false},
        {xml("<integer>1</integer>"), false},
        {xml("<false/>"), false},
        {xml("<true"), false},
        {binaryList("\x09"), true},
        {binaryList("\x08"), false},
        {binaryList("\x53yEs"), true},
        {binaryList(std::string("\x63\0y\0e\0s", 7)), true},
        {binaryList("\x5F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFFx"), false},
        {"", false},
        {"bplist00", false},
        {"not a property list", false},
    };
    const testing::TemporaryHome home;
    const FileURL file(home.write("INBOX.mbox/Data/Messages/1.emlx", ""));
    EXPECT_FALSE(importedMailboxFlag(file));
    for (const auto& [content, expected] : cases) {
        home.write("INBOX.mbox/Info.plist", content);
        EXPECT_EQ(importedMailboxFlag(file), expected) << content;
    }
}

TEST(MessageFileIndex, KnowsWhatIsAFileAndWhatIsNot) {
    const testing::TemporaryHome home;
    const std::string messages = "V10/U/INBOX.mbox/X/Data/Messages/";
    home.write(messages + "1.emlx", "");
    home.makeFolder(messages + "2.emlx");
    home.write(messages + "3.partial.emlx", "");
    home.write(messages + "04.emlx", "");
    home.write("elsewhere", "");
    fs::create_symlink(home.at("elsewhere"), home.at(messages + "5.emlx"));
    fs::create_symlink(home.at("nowhere"), home.at(messages + "6.emlx"));
    home.write("V10/U/INBOX.mbox/X/Data/1/Messages/1000.emlx", "");
    fs::create_directory_symlink(home.at("V10/U/INBOX.mbox/X/Data/1"), home.at("V10/U/INBOX.mbox/X/Data/2"));
    const auto check = [&](MessageFileIndex& index) {
        std::vector<std::int64_t> present;
        for (const std::int64_t row : {-1, 0, 1, 2, 3, 4, 5, 6, 1000, 2000, 3000}) {
            if (index.existingFilePath("imap://U/INBOX", row)) present.push_back(row);
        }
        EXPECT_THAT(present, ::testing::ElementsAre(1, 5, 1000));
        EXPECT_EQ(index.existingFilePath("imap://U/gone", 1), std::nullopt);
    };
    MessageFileIndex lazy(home.path());
    check(lazy);
    const auto listing = std::make_shared<StoreListing>(home.path());
    listing->prefetch({}, [](std::string_view account) { return account == "U"; });
    MessageFileIndex prefetched(listing);
    fs::remove_all(home.at("V10/U/INBOX.mbox/X/Data/Messages"));
    check(prefetched);
}

} // namespace
} // namespace corvane::mailstore
