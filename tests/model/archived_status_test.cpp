#include "model/archiving/archived_status.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/sample_messages.h"

namespace corvane {
namespace {

using ::testing::UnorderedElementsAre;
using Status = ArchivedStatus;

const testing::TemporaryHome& home() {
    static const testing::TemporaryHome shared;
    return shared;
}

SharedMessageList listOf(const std::vector<testing::MessageSketch>& sketches) {
    return std::make_shared<const MessageList>(testing::sampleMessages(home(), sketches));
}

Status::IDs baseIDs(std::initializer_list<const char*> names) {
    auto ids = std::make_shared<SharedTextSet>();
    for (const char* name : names) ids->insert(SharedText(fmt::format("mid:{}@example.org", name)));
    return ids;
}

std::vector<std::string> namesOf(const SharedMessageList& messages, const Status::IDs& archived) {
    std::vector<std::string> names;
    for (const MailMessageRecord& message : *messages) {
        if (archived->contains(message.id)) names.push_back(message.subject.str());
    }
    return names;
}

TEST(ArchivedStatus, APreparedAnswerIsGivenForJustItsTwo) {
    const auto messages = listOf({{"a"}, {"b"}, {"c"}});
    const auto others = listOf({{"b"}, {"d"}});
    const auto earlier = baseIDs({"a"});
    const auto later = baseIDs({"b", "d"});
    Status status;
    EXPECT_THAT(namesOf(messages, status.of(messages, earlier)), UnorderedElementsAre("a"));

    status.prepareFor(later);
    EXPECT_THAT(namesOf(messages, status.of(messages, later)), UnorderedElementsAre("b"));

    // Each of the two became another one while the answer was made.
    status.prepareFor(others);
    EXPECT_THAT(namesOf(messages, status.of(messages, earlier)), UnorderedElementsAre("a"));
    status.prepareFor(later);
    EXPECT_THAT(namesOf(others, status.of(others, later)), UnorderedElementsAre("b", "d"));
    status.prepareFor(messages);
    EXPECT_THAT(namesOf(others, status.of(others, baseIDs({"d"}))), UnorderedElementsAre("d"));
}

TEST(ArchivedStatus, WhatWasPreparedIsNotMadeAgain) {
    const auto messages = listOf({{"a"}, {"b"}});
    const auto ids = baseIDs({"b"});
    Status status;
    (void)status.of(messages, baseIDs({}));
    status.prepareFor(ids);
    const auto answer = status.of(messages, ids);
    EXPECT_EQ(status.of(messages, ids), answer) << "the same set, not an equal one";
    status.prepareFor(ids);
    EXPECT_EQ(status.of(messages, ids), answer);
}

} // namespace
} // namespace corvane
