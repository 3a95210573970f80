// Which messages are archived, for a list of messages and a set of archived base ids. Whoever makes a new one
// of the two in the background has the answer prepared there: the main thread needn't walk over all messages
// when it publishes it. Keeps neither alive, so that whoever replaces a large list decides where it goes. Any
// thread.
#pragma once

#include <memory>
#include <mutex>

#include "records/mail_message_record.h"
#include "text/shared_text.h"

namespace corvane {

class ArchivedStatus {
  public:
    using IDs = std::shared_ptr<const SharedTextSet>; // never null

    // The ids of the messages whose stable id is one of the base ids. These two are the present ones from
    // here on. Costs a pass over the messages unless just these were prepared.
    IDs of(const SharedMessageList& messages, const IDs& baseIDs);

    // Prepares the answer for these messages and the present base ids.
    void prepareFor(const SharedMessageList& messages);

    // Prepares the answer for the present messages and these base ids.
    void prepareFor(const IDs& baseIDs);

  private:
    struct Answer {
        std::weak_ptr<const MessageList> messages;
        std::weak_ptr<const SharedTextSet> baseIDs;
        IDs archived; // null: not made

        [[nodiscard]] bool isOf(const SharedMessageList& ofMessages, const IDs& ofBaseIDs) const;
    };

    [[nodiscard]] Answer present();
    void prepare(const SharedMessageList& messages, const IDs& baseIDs);

    std::mutex mutex_;
    Answer present_;
    Answer prepared_;
};

} // namespace corvane
