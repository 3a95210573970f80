#include "records/archive_files/archive_index_file.h"
#include "records/archived/stable_id.h"
#include "records/json/json_reader.h"
#include "records/json/json_writer.h"
#include "records/json/record_forms.h"
#include "records/stable_hash.h"
#include "sample_records.h"

namespace corvane::testing {
namespace {

ArchivedEmailRecord fullRecord() {
    ArchivedEmailRecord record;
    record.id = "mid:abc#v2";
    record.messageIdentifier = "abc";
    record.subject = "a/b";
    record.ccRecipients = "c@example.com";
    record.date = Date(std::chrono::seconds(-1));
    record.sizeBytes = 42;
    record.attachmentNames = {"一.pdf"};
    record.emlRelativePath = "2023/账户/x.eml";
    record.archivedAt = Date(std::chrono::seconds(1700000000));
    record.sourceCopyCount = 3;
    return record;
}

TEST(JsonForms, KeepEveryFieldOverARoundTrip) {
    const MailMessageRecord message = fullMessage();
    EXPECT_EQ(JsonReader().read<MailMessageRecord>(encodeJson(message)), message);
    MailMessageRecord sparse;
    EXPECT_EQ(JsonReader().read<MailMessageRecord>(encodeJson(sparse)), sparse);
    const EmailArchiveIndex index{
        Date(std::chrono::seconds(1)), Date(std::chrono::seconds(2)), {fullRecord()}};
    EXPECT_EQ(decodeArchiveIndex(encodeArchiveIndex(index)), index);
}

TEST(JsonForms, WriteThePromisedShape) {
    const std::string sparse = encodeJson(MailMessageRecord());
    EXPECT_EQ(sparse.find("date"), std::string::npos) << "an absent optional is left out";
    const std::string full = encodeJson(fullMessage());
    EXPECT_NE(full.find(R"("date":"2023-11-14T22:13:20Z")"), std::string::npos) << full;
    EXPECT_NE(full.find(R"("file:///mail/a%20b/%E4%B8%AD%E6%96%87%25%3B%3F%23.emlx")"), std::string::npos)
        << full;
    EXPECT_LT(full.find("\"subject\""), full.find("\"sender\""));
    const std::string index = encodeArchiveIndex({Date(), Date(), {fullRecord()}});
    EXPECT_NE(index.find("2023/账户/x.eml"), std::string::npos) << "slashes stand as they are";
    EXPECT_LT(index.find("\"archivedAt\""), index.find("\"attachmentNames\"")) << "keys are sorted";
    EXPECT_NE(index.find('\n'), std::string::npos);
}

TEST(JsonForms, RejectWhatIsNotExactlyTheForm) {
    const std::string sound = encodeJson(YearStat{2020, 1, 2, 3, 4, 5});
    ASSERT_EQ(JsonReader().read<YearStat>(sound).attachmentBytes, 5);
    const auto broken = [&](const std::string& from, const std::string& to) {
        std::string text = sound;
        text.replace(text.find(from), from.size(), to);
        return text;
    };
    const std::vector<std::string> faults = {"",
                                             "[]",
                                             "null",
                                             sound + "x",
                                             sound + sound,
                                             sound.substr(0, sound.size() - 1),
                                             broken("\"attachmentBytes\":5", "\"other\":5"),
                                             broken("2020", "\"2020\""),
                                             broken("2020", "2020.5"),
                                             broken("2020", "null"),
                                             broken("2020", "99999999999999999999"),
                                             broken("2020", "true"),
                                             broken("year", "ye\xFF"
                                                            "ar")};
    for (const std::string& fault : faults) {
        EXPECT_THROW(JsonReader().read<YearStat>(fault), JsonError) << fault;
    }
    EXPECT_EQ(JsonReader().read<YearStat>(broken("{", R"({"unknown":[{"a":null}],)")).year, 2020);
    EXPECT_EQ(JsonReader().read<YearStat>(broken("year", "ye\\u0061r")).year, 2020) << "keys may be escaped";
}

TEST(JsonForms, OneIncompleteRecordFailsAWholeIndex) {
    EmailArchiveIndex index{Date(), Date(), {fullRecord(), fullRecord()}};
    std::string text = encodeArchiveIndex(index);
    const std::size_t at = text.rfind("\"emlRelativePath\"");
    text.replace(at, 17, "\"elsewhere\"      ");
    EXPECT_FALSE(decodeArchiveIndex(text));
    EXPECT_FALSE(decodeArchiveIndex(std::string(1000000, '[')));
}

TEST(JsonForms, DatesReadOnlyInTheOneForm) {
    const std::vector<std::pair<std::string, std::optional<std::int64_t>>> cases = {
        {"1970-01-01T00:00:00Z", 0},
        {"2024-02-29T23:59:59Z", 1709251199},
        {"1969-12-31T23:59:59Z", -1},
        {"2023-02-29T00:00:00Z", std::nullopt},
        {"2024-01-01T00:00:00.5Z", std::nullopt},
        {"2024-01-01T00:00:00", std::nullopt},
        {"2024-01-01 00:00:00Z", std::nullopt},
        {"2024-1-01T00:00:00Z", std::nullopt},
        {"", std::nullopt}};
    for (const auto& [text, seconds] : cases) {
        const auto date = parseTimestamp(text);
        ASSERT_EQ(date.has_value(), seconds.has_value()) << text;
        if (date) {
            EXPECT_EQ(date->time_since_epoch().count(), *seconds) << text;
        }
    }
    for (const std::int64_t seconds : {-62135596800LL, 253402300800LL, 99999999999999LL, -99999999999999LL}) {
        const Date date{std::chrono::seconds(seconds)};
        EXPECT_EQ(parseTimestamp(formatTimestamp(date)), date) << formatTimestamp(date);
    }
}

TEST(JsonForms, EscapeEveryControlCharacter) {
    MailMessageRecord message;
    std::string controls;
    for (char control = 0; control < 0x20; ++control)
        controls += std::string(20, control) + "text of some length";
    message.subject = controls;
    const std::string json = encodeJson(message);
    EXPECT_TRUE(std::none_of(json.begin(), json.end(), [](char byte) { return byte >= 0 && byte < 0x20; }));
    EXPECT_EQ(JsonReader().read<MailMessageRecord>(json), message);
    ArchivedEmailRecord record = fullRecord();
    record.ccRecipients = controls;
    EXPECT_EQ(decodeArchiveIndex(encodeArchiveIndex({Date(), Date(), {record}}))->records.front(), record);
}

TEST(JsonForms, RepairTextThatIsNoUtf8OnTheWayOut) {
    MailMessageRecord message;
    message.subject = std::string("a\xFF\xC3");
    EXPECT_EQ(JsonReader().read<MailMessageRecord>(encodeJson(message)).subject, "a\uFFFD\uFFFD");
}

TEST(Identity, OfMessagesAndRecords) {
    MailMessageRecord message;
    message.sender = "a";
    message.subject = "b";
    message.messageIdentifier = "";
    EXPECT_EQ(stableID(message), "ck:0|a|b");
    message.date = Date(std::chrono::seconds(12));
    EXPECT_EQ(stableID(message), "ck:12|a|b");
    message.messageIdentifier = "abc";
    EXPECT_EQ(stableID(message), "mid:abc");
    EXPECT_EQ(stableHash(""), "14650fb0739d0383");
    EXPECT_NE(stableHash("/a"), stableHash("/a/"));
}

TEST(Identity, OfARecordLosesOnlyTheNumberOfAVariant) {
    struct {
        const char* messageIdentifier;
        const char* id;
        const char* base;
    } const cases[] = {
        {"abc", "mid:abc", "mid:abc"},
        {"abc", "mid:abc#v12", "mid:abc"},
        {"a#vb@host", "mid:a#vb@host#v1", "mid:a#vb@host"},
        // Another message, whose Message-ID ends like a variant of the first.
        {"abc#v1", "mid:abc#v1", "mid:abc#v1"},
        {"abc#v1", "mid:abc#v1#v1", "mid:abc#v1"},
        {"abc", "mid:abc#v", "mid:abc#v"},
        {"abc", "mid:abc#v1x", "mid:abc#v1x"},
        {"", "ck:12|s|t#v3", "ck:12|s|t"},
        {"", "ck:12|s|other#v3", "ck:12|s|other#v3"},
    };

    for (const auto& [messageIdentifier, id, base] : cases) {
        ArchivedEmailRecord record = fullRecord();
        record.messageIdentifier = messageIdentifier;
        record.id = id;
        record.date = Date(std::chrono::seconds(12));
        record.sender = "s";
        record.subject = "t";
        EXPECT_EQ(baseID(record), base) << id;
    }
}

TEST(Identity, OfFilesCountsEachPathOnce) {
    MailMessageRecord message = fullMessage("/a");
    message.relatedMessageFileURLs = {FileURL("/a"), FileURL("/b"), FileURL("/a")};
    EXPECT_EQ(message.allMessageFileURLs(), (std::vector{FileURL("/a"), FileURL("/b")}));
    EXPECT_TRUE(message.hasDuplicateMessageFiles());
    message.relatedMessageFileURLs = {FileURL("/a")};
    EXPECT_FALSE(message.hasDuplicateMessageFiles());
}

TEST(Uuids, ReadAndWriteTheCanonicalText) {
    const Uuid uuid = Uuid::random();
    EXPECT_EQ(Uuid::parse(uuid.text()), uuid);
    EXPECT_EQ(uuid.text()[14], '4');
    EXPECT_FALSE(Uuid::parse("0000"));
    EXPECT_FALSE(Uuid::parse("G0000000-0000-0000-0000-000000000000"));
    EXPECT_FALSE(Uuid::parse("00000000000000000000000000000000----"));
}

} // namespace
} // namespace corvane::testing
