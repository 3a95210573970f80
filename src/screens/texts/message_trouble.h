// Why a message isn't archived, or doesn't count as archived, in the words of the window. Main thread.
#pragma once

#include <memory>

#include <QString>

#include "listing/proof/proof_table.h"
#include "model/archiving/last_failures.h"
#include "records/mail_message_record.h"
#include "records/values.h"
#include "text/shared_text.h"

namespace corvane {

struct AwayProofs;

class CorvaneViewModel;

// All empty for a message without trouble.
struct MessageTrouble {
    QString symbol;
    QString tone;  // of a control: danger, attention, or empty
    QString label; // "与归档不一致"
    QString text;  // what it means and what helps
    bool isSetAside = false;
    bool hasFailed = false; // in the last run

    [[nodiscard]] bool isPresent() const { return !label.isEmpty(); }

    friend bool operator==(const MessageTrouble&, const MessageTrouble&) = default;
};

// What is known of all messages, shared. No pointer is null.
struct MessageTroubles {
    SharedProofTable proofs = std::make_shared<const ProofTable>();
    std::shared_ptr<const SharedTextSet> setAsideIDs = std::make_shared<const SharedTextSet>();
    std::shared_ptr<const FailureReasons> failures = std::make_shared<const FailureReasons>();
    std::shared_ptr<const SharedTextSet> archivedIDs = std::make_shared<const SharedTextSet>();
    // Of messages that share the id of archived mail with others.
    std::shared_ptr<const SharedTextSet> ambiguousIDs = std::make_shared<const SharedTextSet>();

    static MessageTroubles known(CorvaneViewModel& model);

    // A failure of the last run stands before what a proof has found, as long as the message isn't archived.
    [[nodiscard]] MessageTrouble of(const MailMessageRecord& message) const;
};

namespace screens {

// "2026-11-22 的比对，归档磁盘未连接": of a proof that rests on an archive which isn't connected; else empty.
QString awayProofText(CorvaneViewModel& model, const MailMessageRecord& message);

// The same of several, with the number of them as "%1" for who has it: "%1 封是 2026-11-22 的比对，…".
QString awayProofsText(const AwayProofs& away);

// In a sentence of its own; empty where there are none.
QString awayProofsSentence(const AwayProofs& away);

} // namespace screens

} // namespace corvane
