// Whether messages are in Mail now: asked of the live index, where trash and junk don't count. "No
// answer" (nullopt) is not "not there" (an empty set), and callers must keep them apart. Background work,
// long queries; any thread.
#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mailstore/mail_store_context.h"
#include "records/mail_message_record.h"
#include "text/shared_text.h"

namespace corvane {

// A message without a usable identifier, known by what its index row must hold.
struct ContentPresenceTarget {
    SharedText key; // the caller's name for it
    std::string senderAddress;
    std::string subject;
    Date date;
};

namespace mailstore {

// Whether a live message has the identifier, by position; they come in their normalized form, and nothing has
// an empty one. Nullopt without an index, for one without identifiers, and after any failure.
std::optional<std::vector<bool>>
liveMessageIdentifierPresence(const MailStoreContext& context, const std::string& rootPath,
                              const std::vector<std::string_view>& identifiers);

// Whether the index keeps Message-IDs at all. Nullopt when nobody could look.
std::optional<bool> hasMessageIDHeaders(const MailStoreContext& context, const std::string& rootPath);

// The keys of the targets that a live message matches: same sender and subject without regard to case, and
// dates at most two days apart. An absent subject and the texts that stand for one are the same subject.
// Nullopt without an index and after any failure.
std::optional<SharedTextSet> liveMessagePresenceByContent(const MailStoreContext& context,
                                                          const std::string& rootPath,
                                                          const std::vector<ContentPresenceTarget>& targets);

enum class NoOriginal { notThere, noAnswer };

// The Message-ID header of the newest live copy as it is stored, with its case and brackets.
std::expected<std::string, NoOriginal> liveMessageOriginalIDHeader(const MailStoreContext& context,
                                                                   const std::string& rootPath,
                                                                   std::string_view messageIdentifier);

} // namespace mailstore

} // namespace corvane
