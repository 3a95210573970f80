// What the rows of the library show of their mails' texts: the beginning, and the place of the search. Read
// in the background for the rows that were asked for last; kept for some thousand mails. Main thread.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include <QObject>
#include <QTimer>
#include <QVariantList>

#include "model/library/body_texts.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"
#include "text/shared_text.h"

namespace corvane {

class RowTexts : public QObject {
    Q_OBJECT

  public:
    struct RowText {
        QString preview;      // empty when there is none
        QVariantList snippet; // in pieces; empty without a search, and for a text that doesn't hold it
    };

    // Both must outlive it.
    RowTexts(ModelContext& context, BodyTexts& texts, QObject* parent = nullptr);

    // Null as long as it isn't known; then it is read, and `changed` follows.
    [[nodiscard]] const RowText* of(const ArchivedEmailRecord& record) const;

    // Snippets are of this query from here on.
    void setQuery(const std::string& query);

    // Texts that were absent may be there now.
    void forget();

  Q_SIGNALS:
    // What is known of texts, or the query.
    void changed();

  private:
    void readWanted();
    void handleText(const SharedText& id, const std::optional<std::string>& text);
    void keep(const SharedText& id, RowText text);

    BodyTexts& texts_;
    std::string query_;
    std::unordered_map<SharedText, RowText, TextHash, TextEqual> known_; // by record id
    mutable std::vector<ArchivedEmailRecord> wanted_;                    // the last is wanted most
    mutable QTimer readTimer_;
    QTimer changeTimer_;
    TaskGroup tasks_;
};

} // namespace corvane
