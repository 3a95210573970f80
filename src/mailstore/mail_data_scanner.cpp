#include "mailstore/mail_data_scanner.h"

#include <algorithm>
#include <unordered_map>

#include <fmt/format.h>

#include "mailstore/batch_stream.h"
#include "mailstore/walk_scan.h"
#include "platform/parallel.h"
#include "records/console_log.h"

namespace corvane {

namespace {

using mailstore::BatchStream;

constexpr std::size_t chunkSize = 160;

// The labels of every mailbox, made once before the lanes start and then only read.
class LabelsByMailbox {
  public:
    LabelsByMailbox(const std::vector<IndexedMessageCandidate>& candidates,
                    const mailstore::AccountNames& names) {
        for (const auto& candidate : candidates) {
            if (labels_.contains(candidate.mailboxURL)) continue;
            labels_.emplace(candidate.mailboxURL, mailstore::mailboxLabels(candidate.mailboxURL, names));
        }
    }

    [[nodiscard]] const mailstore::MailboxLabels& of(const SharedText& mailboxURL) const {
        return labels_.at(mailboxURL);
    }

  private:
    std::unordered_map<SharedText, mailstore::MailboxLabels> labels_;
};

// A scan by the index. The candidates are given up as their records are made.
class IndexScan {
  public:
    IndexScan(const MailDataScanner& scanner, IndexedMessageFiles found, ScanTimingMetrics& timing)
      : found_(std::move(found))
      , timing_(timing)
      , attachments_(indexAttachments())
      , labels_(found_.candidates, scanner.accountNamesByPrefix) {}

    // False when a stop was requested. While a chunk is handed over, which happens on the calling thread, the
    // lanes are at work on the next one.
    bool run(BatchStream& batches, const std::stop_token& stop) {
        Outcomes current = parseChunk(0);
        for (std::size_t start = 0; start < found_.files.size(); start += chunkSize) {
            if (stop.stop_requested()) return false;
            Outcomes next;
            platform::CallAhead ahead([&] { next = parseChunk(start + chunkSize); });
            handOver(current, batches);
            const SecondsCounter elapsed(timing_.enumerationSeconds);
            ahead.wait();
            current = std::move(next);
        }
        return true;
    }

  private:
    using Outcomes = std::vector<std::optional<MailMessageRecord>>;

    MailAttachmentFileLocator::Index indexAttachments() {
        const SecondsCounter elapsed(timing_.attachmentIndexSeconds);
        auto index = MailAttachmentFileLocator::makeIndex(found_.files);
        timing_.indexedAttachmentFolders = static_cast<std::int64_t>(index.folderCount());
        return index;
    }

    void handOver(Outcomes& outcomes, BatchStream& batches) {
        for (auto& record : outcomes) {
            if (record) {
                ++timing_.matchedMessages;
                record->sender = repeated_(record->sender);
            }
            batches.addVisited(std::move(record));
        }
    }

    // Empty behind the last file.
    Outcomes parseChunk(std::size_t first) {
        const std::size_t start = std::min(first, found_.files.size());
        const std::size_t end = std::min(start + chunkSize, found_.files.size());
        Outcomes outcomes(end - start);
        platform::parallelFor(start, end, [&](std::size_t i) {
            try {
                const IndexedMessageCandidate candidate = std::move(found_.candidates[i]);
                outcomes[i - start] = mailstore::parseIndexedMessage(
                    found_.files[i], candidate, attachments_, labels_.of(candidate.mailboxURL), timing_);
            } catch (const std::exception&) {
                outcomes[i - start].reset(); // one message that can't be parsed doesn't stop a scan
            }
        });
        return outcomes;
    }

    IndexedMessageFiles found_;
    ScanTimingMetrics& timing_;
    MailAttachmentFileLocator::Index attachments_;
    LabelsByMailbox labels_;
    TextInterner repeated_;
};

} // namespace

void MailDataScanner::scanBatches(const BatchHandler& handle, const std::stop_token& stop) const {
    ScanTimingMetrics timing;
    BatchStream batches(handle, timing);
    try {
        auto found =
            mailstore::indexedMessages(context, rootPath, maximumYear, accountURLPrefixes, &timing, stop);
        if (found) {
            IndexScan scan(*this, std::move(*found), timing);
            batches.flush();
            if (!scan.run(batches, stop)) return;
        } else {
            mailstore::WalkScan(*this, timing).run(batches, stop);
        }
    } catch (const ScanStopped&) {
        return;
    }
    consoleLine("[Corvane][scan-done] " + batches.summary());
    batches.flush();
}

} // namespace corvane
