// The removal of mail from its archives, as it is asked and told: what would go, whether it is the only copy,
// and what came of it. Nothing is removed before `accept`, and nothing else than what was asked about. Main
// thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <QElapsedTimer>
#include <QObject>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "model/tasks/task_slot.h"
#include "screens/library/removal/only_copy_warning.h"
#include "screens/library/removal/removal_list.h"

namespace corvane {

class RemovalQuestion : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the library")
    Q_PROPERTY(Step step READ step NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString line READ line NOTIFY changed)
    // Maps with `subject`, `sender`, `dateText`, `sizeText`, `state` and `only`; of a long list the first.
    Q_PROPERTY(QVariantList items READ items NOTIFY changed)
    Q_PROPERTY(corvane::OnlyCopyWarning* onlyCopy READ onlyCopy CONSTANT)
    Q_PROPERTY(bool canAccept READ canAccept NOTIFY changed)
    Q_PROPERTY(QString note READ note NOTIFY progressChanged)
    Q_PROPERTY(bool canStop READ canStop NOTIFY progressChanged)
    Q_PROPERTY(int count READ count NOTIFY changed)
    // Maps with `label`, `count`, `line` and `tone`.
    Q_PROPERTY(QVariantList figures READ figures NOTIFY changed)
    Q_PROPERTY(int failedCount READ failedCount NOTIFY changed)
    // Maps with `subject`, `sizeText` and `reason`; of a long list the first.
    Q_PROPERTY(QVariantList failures READ failures NOTIFY changed)

  public:
    enum class Step { Closed, Asking, Removing, Failed };
    Q_ENUM(Step)

    // `model` must outlive it.
    explicit RemovalQuestion(CorvaneViewModel& model, QObject* parent = nullptr);

    // Positions in the index of the list; the question stands a moment later. No effect without any, and
    // while a removal is under way.
    void ask(SharedLibraryList list, std::vector<EntryPosition> entries);

    Q_INVOKABLE void accept();

    // What wasn't begun stays, and is told as a failure.
    Q_INVOKABLE void stop();

    // Also of what is told afterwards; no effect while mail is being removed.
    Q_INVOKABLE void close();

    // The archive of the first failure; empty without one.
    [[nodiscard]] const std::string& failureRoot() const { return report_.root; }

    // The failures as lines, for the clipboard.
    [[nodiscard]] const QString& failureLines() const { return report_.lines; }

    [[nodiscard]] Step step() const { return step_; }

    [[nodiscard]] QString title() const;
    [[nodiscard]] QString line() const;
    [[nodiscard]] QVariantList items() const;

    [[nodiscard]] OnlyCopyWarning* onlyCopy() { return &onlyCopy_; }

    [[nodiscard]] bool canAccept() const;
    [[nodiscard]] QString note() const;

    // Mail is being removed for longer than a moment, and nobody has stopped it.
    [[nodiscard]] bool canStop() const;

    [[nodiscard]] int count() const { return static_cast<int>(list_.entries->size()); }

    // Of the last removal.
    [[nodiscard]] int failedCount() const;
    [[nodiscard]] QVariantList figures() const;

    [[nodiscard]] const QVariantList& failures() const { return report_.failures; }

  Q_SIGNALS:
    void changed();
    // Follows `changed` too.
    void progressChanged();

  private:
    struct Asked {
        SharedLibraryList list;
        std::vector<EntryPosition> entries;
    };

    void makeList();
    void handleEnd();
    void setStep(Step step);
    [[nodiscard]] bool isConnected() const;
    [[nodiscard]] QString failedLine() const;

    CorvaneViewModel& model_;
    Step step_ = Step::Closed;
    Asked asked_;
    RemovalList list_;
    RemovalReport report_;
    OnlyCopyWarning onlyCopy_;
    bool isOurs_ = false; // the removal that is under way
    bool isStopping_ = false;
    QElapsedTimer begun_;
    TaskSlot listTask_;
    TaskSlot reportTask_;
};

} // namespace corvane
