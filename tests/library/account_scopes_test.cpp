#include "library/accounts/account_scopes.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "library/accounts/account_merge_rules.h"
#include "library/accounts/collection_preview.h"
#include "library/accounts/contained_texts.h"
#include "library/entry_sketch.h"

namespace corvane::testing {
namespace {

const std::string localKey = "mail-account:l@x（mail 本机归档文件夹）";
const std::string localTitle = "l@x（Mail 本机归档文件夹）";
const ArchiveAccountScope unclassified = {"legacy-unclassified", "未归类归档"};

TEST(AccountScopes, FollowTheRecordThenItsFolderThenItsAddresses) {
    const std::vector<MailAccount> accounts = {
        makeAccount("imap://A", "A@x", {"INBOX", "Both", "甲"}),
        makeAccount("imap://B", "B@x", {"INBOX", "Both", "%E4%B9%99.mbox"}, "b@linked"),
        makeAccount("local://L", "Mac", {"Both", "Old", " Raw "}, "l@x", true),
        makeAccount("local://M", "Mac", {"Two"}, "m@x", true),
        makeAccount("local://N", "Mac", {"Two"}, "n@x", true),
        makeAccount("local://P", "Plain", {"Three"}, {}, true),
    };

    struct Case {
        EntrySketch entry;
        ArchiveAccountScope scope;
    };

    const Case cases[] = {
        {{.id = "1", .account = " A@X "}, {"mail-account:a@x", " A@X "}},
        {{.id = "2", .account = " "}, {"legacy-unclassified", " "}},
        {{.id = "3", .account = "", .mailbox = "old", .sender = "a@x"}, {localKey, localTitle}},
        {{.id = "4", .account = "", .mailbox = "raw"}, {localKey, localTitle}},
        {{.id = "5", .account = "", .mailbox = "甲", .sender = "Y <B@LINKED>"},
         {"mail-account:b@linked", "b@linked"}},
        {{.id = "6", .account = "", .mailbox = "?", .sender = "b@linked, a@x"}, {"mail-account:a@x", "A@x"}},
        {{.id = "7", .account = "", .mailbox = "?", .recipients = "z@z; A@X"}, {"mail-account:a@x", "A@x"}},
        {{.id = "8", .account = "", .mailbox = "甲"}, {"mail-account:a@x", "A@x"}},
        {{.id = "9", .account = "", .mailbox = "乙"}, {"mail-account:b@linked", "b@linked"}},
        {{.id = "10", .account = "", .mailbox = "INBOX"},
         {"mail-account:b@linked", "b@linked"}}, // the one linked
        {{.id = "11", .account = "", .mailbox = "Two"}, unclassified},
        {{.id = "12", .account = "", .mailbox = "Three"},
         {"mail-account:plain（mail 本机归档文件夹）", "Plain（Mail 本机归档文件夹）"}},
        {{.id = "13", .account = "", .mailbox = "none"}, unclassified},
    };
    const ArchiveAccountScopes scopes(accounts, {});
    AccountScopeTable table(scopes);
    std::vector<ArchivedEntry> entries;
    for (const Case& one : cases) entries.push_back(makeEntry(one.entry));
    for (std::size_t number = 0; number < entries.size(); ++number) {
        const ArchivedEmailRecord& record = entries[number].record;
        EXPECT_EQ(scopes.keyAndTitle(record), cases[number].scope) << record.id;
        EXPECT_EQ(table.all()[table.numberOf(record)], cases[number].scope) << record.id;
    }
    EXPECT_EQ(scopes.externalArchiveFolderOwner(entries[0].record), std::nullopt);
    EXPECT_EQ(scopes.externalArchiveFolderOwner(entries[10].record), std::nullopt);
    EXPECT_TRUE(scopes.externalArchiveFolderOwner(entries[2].record).has_value());
}

TEST(AccountScopes, GroupsOfTheUserGoBeforeEverything) {
    const std::vector<MailAccount> accounts = {makeAccount("local://L", "Mac", {"Old"}, "l@x", true)};
    const ArchiveAccountMergeRules rules = {{"mail-account:a@x", "组"}, {"mail-account:empty", ""},
                                            {"email:", "none"},         {"email:boss@y", "工作"},
                                            {"email:a-first@y", "先"},  {"email:gone@y", ""},
                                            {"inferred:guess@y", "猜"}, {"legacy-unclassified", "旧"}};
    const ArchiveAccountScopes scopes(accounts, rules);

    struct Case {
        EntrySketch entry;
        std::string key;
    };

    const Case cases[] = {
        {{.id = "1", .account = "A@x", .sender = "boss@y"}, "usergroup:组"},
        {{.id = "2", .account = "b@x", .sender = "Chef <BOSS@Y>"}, "usergroup:工作"},
        {{.id = "3", .account = "b@x", .sender = "boss@y", .recipients = "a-first@y"}, "usergroup:先"},
        {{.id = "4", .account = "b@x", .sender = "guess@y"}, "mail-account:b@x"},
        {{.id = "5", .account = "b@x", .sender = "gone@y"}, "mail-account:b@x"},
        {{.id = "6", .account = "empty"}, "mail-account:empty"},
        {{.id = "7", .account = "", .mailbox = "Old", .sender = "boss@y"}, localKey},
        {{.id = "8", .account = "", .mailbox = "?"}, "usergroup:旧"},
    };
    AccountScopeTable table(scopes);
    std::vector<ArchivedEntry> entries;
    for (const Case& one : cases) entries.push_back(makeEntry(one.entry));
    for (std::size_t number = 0; number < entries.size(); ++number) {
        const ArchivedEmailRecord& record = entries[number].record;
        EXPECT_EQ(scopes.archiveAccountScope(record).key, cases[number].key) << record.id;
        EXPECT_EQ(table.all()[table.numberOf(record)], scopes.archiveAccountScope(record)) << record.id;
    }
}

TEST(AccountMergeRules, CollectionsReplaceTheAddressesOfTheirEarlierNames) {
    ArchiveAccountMergeRules rules = {{"mail-account:a", "旧"},
                                      {"email:old@x", "旧"},
                                      {"inferred:old@x", "旧"},
                                      {"email:same@x", "新"},
                                      {"email:other@x", "别"}};
    const std::vector<std::string> bases = {"mail-account:a", "", "mail-account:b"};
    const std::vector<std::string> addresses = {" N@X ", "n@x", "no address"};
    EXPECT_EQ(setArchiveAccountAddressCollection(rules, bases, addresses, " \n"), std::nullopt);
    EXPECT_EQ(rules.size(), 5U);
    EXPECT_EQ(setArchiveAccountAddressCollection(rules, bases, addresses, " 新\n"), "usergroup:新");
    EXPECT_EQ(rules, (ArchiveAccountMergeRules{{"mail-account:a", "新"},
                                               {"mail-account:b", "新"},
                                               {"inferred:old@x", "旧"},
                                               {"email:n@x", "新"},
                                               {"inferred:n@x", "新"},
                                               {"email:other@x", "别"}}));
    const ArchiveAddressCollectionEdit edit = addressCollection(rules, "新");
    EXPECT_EQ(edit.baseKeys, (std::vector<std::string>{"mail-account:a", "mail-account:b"}));
    EXPECT_EQ(edit.addresses, (std::vector<std::string>{"n@x"}));
    EXPECT_EQ(removeArchiveAccountGroup(rules, "新"), 4U);
    EXPECT_EQ(rules, (ArchiveAccountMergeRules{{"inferred:old@x", "旧"}, {"email:other@x", "别"}}));
}

TEST(AccountMergeRules, WhatIsTakenOutOfAGroupIsInNone) {
    ArchiveAccountMergeRules rules = {
        {"mail-account:a", "旧"}, {"email:old@x", "旧"}, {"email:other@x", "别"}};
    const ArchiveAccountMergeRules before = rules;
    EXPECT_EQ(replaceArchiveAccountGroup(rules, "旧", {.id = {}, .title = " "}), std::nullopt);
    EXPECT_EQ(rules, before);
    EXPECT_EQ(
        replaceArchiveAccountGroup(rules, "旧", {.id = {}, .title = "新", .baseKeys = {"mail-account:b"}}),
        "usergroup:新");
    EXPECT_EQ(rules, (ArchiveAccountMergeRules{{"mail-account:b", "新"}, {"email:other@x", "别"}}));
}

TEST(AccountMergeRules, APreviewCountsEachMailOnceAndSaysWhereItIsTakenFrom) {
    CollectionQuestion question{
        .entries = makeEntries({{.id = "1", .account = "A@x", .sender = "boss@y", .size = 1},
                                {.id = "2", .account = "b@x", .sender = "Chef <BOSS@Y>", .size = 2},
                                {.id = "3", .account = "b@x", .size = 4, .recipients = "boss@y, old@y"},
                                {.id = "4", .account = "b@x", .sender = "old@y", .size = 8},
                                {.id = "5", .account = "c@x", .size = 16},
                                {.id = "6", .account = "b@x", .size = 32}}),
        .availableAccounts = {},
        .rules = {{"email:old@y", "旧"}, {"mail-account:c@x", "别"}},
        .formerName = {},
        .edit = {.id = {},
                 .title = {}, // not named yet
                 .baseKeys = {"mail-account:a@x", "mail-account:c@x", "mail-account:gone@x"},
                 .addresses = {"Boss@y"}}};
    const auto preview = previewOfCollection(question, {});
    ASSERT_TRUE(preview);
    EXPECT_EQ(preview->count, 4);
    EXPECT_EQ(preview->bytes, 1 + 2 + 4 + 16);
    using Mails = CollectionPreview::Mails;
    EXPECT_EQ(preview->accounts, (std::vector<Mails>{{"mail-account:b@x", "b@x", 4, 46},
                                                     {"mail-account:a@x", "A@x", 1, 1},
                                                     {"mail-account:c@x", "c@x", 1, 16},
                                                     {"mail-account:gone@x", "gone@x", 0, 0}}));
    EXPECT_EQ(preview->parts, (std::vector<Mails>{{"mail-account:a@x", "a@x", 1, 1},
                                                  {"mail-account:c@x", "c@x", 1, 16},
                                                  {"mail-account:gone@x", "gone@x", 0, 0},
                                                  {"boss@y", "boss@y", 2, 6}}));
    EXPECT_EQ(preview->sources, (std::vector<Mails>{{"mail-account:b@x", "b@x", 1, 2},
                                                    {"usergroup:旧", "旧", 1, 4},
                                                    {"usergroup:别", "别", 1, 16}}));
    // The group itself isn't where its mail is taken from.
    question.formerName = "旧";
    question.edit = {.id = {}, .title = "旧", .baseKeys = {}, .addresses = {"old@y"}};
    EXPECT_EQ(previewOfCollection(question, {})->count, 2);
    EXPECT_TRUE(previewOfCollection(question, {})->sources.empty());
}

TEST(AccountMergeRules, ExtractAddresses) {
    const std::pair<std::string, std::optional<std::string>> cases[] = {
        {"Zhang <A@X> ", "a@x"}, {" A@X\t", "a@x"}, {"Zhang", {}}, {"", {}},
        {"a> <b@x", "a> <b@x"},  {"<<B >", "b"},    {"<>", ""},
    };
    for (const auto& [text, address] : cases) EXPECT_EQ(extractEmailAddress(text), address) << text;
}

TEST(ContainedTexts, FindTheFirstOfTheListWhereverItStands) {
    const ContainedTexts texts({"", "she", "he", "hers", "his", "he", "e"});
    const std::pair<std::string, std::optional<std::size_t>> cases[] = {
        {"", {}}, {"x", {}}, {"e", 6}, {"ushers", 1}, {"hers", 2}, {"xhisx", 4}, {"sh", {}}, {"shhis", 4}};
    for (const auto& [text, first] : cases) EXPECT_EQ(texts.first(text), first) << text;
    EXPECT_TRUE(ContainedTexts({""}).empty());
    std::vector<std::string> ladder;
    for (std::size_t length = 1; length <= 1000; ++length) ladder.push_back(std::string(length, 'a') + "b");
    EXPECT_EQ(ContainedTexts(ladder).first(std::string(1'000'000, 'a') + "b"), 0U);
}

} // namespace
} // namespace corvane::testing
