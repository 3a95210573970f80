#include "records/archive_files/archive_index_decoder.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <string>

#include <gtest/gtest.h>

#include "records/archive_files/archive_index_file.h"
#include "records/json/json_reader.h"
#include "records/json/json_writer.h"
#include "records/json/record_forms.h"

namespace corvane {
namespace {

ArchivedEmailRecord recordWithSubject(std::string_view subject) {
    ArchivedEmailRecord record;
    record.id = "mid:a";
    record.subject = subject;
    record.referencedMessageIdentifiers = {"x", "y"};
    return record;
}

std::optional<EmailArchiveIndex> decodedInPieces(std::string_view json, std::size_t pieceBytes) {
    ArchiveIndexDecoder decoder;
    for (; !json.empty(); json.remove_prefix(std::min(pieceBytes, json.size())))
        decoder.add(json.substr(0, pieceBytes));
    return decoder.finish();
}

TEST(ArchiveIndexDecoder, ReadsWhatTheReaderOfWholeTextsReads) {
    EmailArchiveIndex index{Date(std::chrono::seconds(1)), Date(std::chrono::seconds(2)), {}};
    for (std::size_t i = 0; i < 3; ++i)
        index.records.push_back(recordWithSubject("}],\\\" {[" + std::string(std::size_t{700'000} * i, 'x')));
    const std::string whole = encodeArchiveIndex(index);
    const std::string dates = R"("createdAt":"2020-01-01T00:00:00Z","updatedAt":"2020-01-01T00:00:00Z")";
    const std::string texts[] = {
        whole,
        encodeJson(index),
        whole.substr(0, whole.size() - 2),
        whole + "x",
        "",
        "[]",
        "{}",
        "{,}",
        "{" + dates + "}",
        "{" + dates + ",\"records\":null}",
        "{" + dates + ",\"records\":{}}",
        "{" + dates + ",\"records\":[ ]}",
        "{" + dates + ",\"records\":[,]}",
        "{" + dates + ",\"records\":[{}]}",
        "{" + dates + ",\"records\":[1]}",
        "{" + dates + ",\"records\":[]]}",
        "{" + dates + ",\"records\":[],}",
        "{" + dates + ",\"records\":[}]",
        "{" + dates + ",\"re\\u0063ords\":[]}",
        "{" + dates + R"(,"other":{"records":["}]\""]},"records":[])" + "}",
        "{" + dates + ",\"records\":[1],\"records\":[]}",
        " \n{ \"records\" : [] ,\t" + dates + " } ",
    };
    for (const std::string& text : texts) {
        std::optional<EmailArchiveIndex> expected;
        try {
            expected = JsonReader().read<EmailArchiveIndex>(text);
        } catch (const JsonError&) {
        }
        // A list is decoded as it comes, before one knows that another of its name follows.
        if (text.find("[1],") != std::string::npos) expected.reset();
        for (const std::size_t pieceBytes : {std::size_t{1}, std::size_t{7}, std::size_t{1} << 20})
            EXPECT_EQ(decodedInPieces(text, pieceBytes), expected) << text.substr(0, 200) << pieceBytes;
    }
}

TEST(ArchiveIndexDecoder, RefusesTheCommaBehindAFullPiece) {
    EmailArchiveIndex index{Date(), Date(), {recordWithSubject(std::string(2'000'000, 'x'))}};
    std::string text = encodeJson(index);
    EXPECT_EQ(decodedInPieces(text, text.size()), index);
    text.insert(text.rfind(']'), " ,");
    EXPECT_EQ(decodedInPieces(text, text.size()), std::nullopt);
}

} // namespace
} // namespace corvane
