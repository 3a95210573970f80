#include "screens/texts/message_trouble.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(MessageTroubles, TellTheReasonThatStandsInTheWay) {
    MailMessageRecord message;
    message.id = "/m.emlx";
    message.fileURL = FileURL(message.id);
    MessageTroubles troubles;
    EXPECT_FALSE(troubles.of(message).isPresent());
    auto proofs = std::make_shared<ProofTable>();
    proofs->against.emplace(message.id, ProofVerdict{ProofOutcome::differs, "/m.emlx"});
    troubles.proofs = proofs;
    EXPECT_EQ(troubles.of(message).label, QStringLiteral("与归档不一致"));
    EXPECT_TRUE(troubles.of(message).text.endsWith(QStringLiteral("/m.emlx")));
    troubles.failures = std::make_shared<const FailureReasons>(
        FailureReasons{{message.id, "邮件未下载到本地。请在 Mail 里下载。"}});
    EXPECT_EQ(troubles.of(message).label, QStringLiteral("上次失败：邮件未下载到本地"));
    EXPECT_TRUE(troubles.of(message).hasFailed);
    troubles.archivedIDs = std::make_shared<const SharedTextSet>(SharedTextSet{message.id});
    EXPECT_EQ(troubles.of(message).label, QStringLiteral("与归档不一致")) << "archived since then";
    troubles.setAsideIDs = troubles.archivedIDs;
    EXPECT_TRUE(troubles.of(message).isSetAside);
}

} // namespace
} // namespace corvane
