// The removal of mail from its archives, as it is asked and told: what would go, whether it is the only copy,
// and what came of it. Nothing is removed before `accept`, and nothing else than what was asked about. Main
// thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <QObject>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"

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
    Q_PROPERTY(int itemsLeftOut READ itemsLeftOut NOTIFY changed)
    Q_PROPERTY(QString onlyTitle READ onlyTitle NOTIFY changed)
    Q_PROPERTY(QString onlyText READ onlyText NOTIFY changed)
    Q_PROPERTY(QString onlyTick READ onlyTick NOTIFY changed)
    Q_PROPERTY(bool ticked READ isTicked WRITE setTicked NOTIFY changed)
    Q_PROPERTY(bool canAccept READ canAccept NOTIFY changed)
    Q_PROPERTY(QString note READ note NOTIFY changed)
    Q_PROPERTY(int count READ count NOTIFY changed)
    // Maps with `label`, `count`, `line` and `tone`.
    Q_PROPERTY(QVariantList figures READ figures NOTIFY changed)
    // Maps with `subject`, `sizeText` and `reason`.
    Q_PROPERTY(QVariantList failures READ failures NOTIFY changed)

  public:
    enum class Step { Closed, Asking, Removing, Failed };
    Q_ENUM(Step)

    // `model` must outlive it.
    explicit RemovalQuestion(CorvaneViewModel& model, QObject* parent = nullptr);

    // Elements of the library's list. No effect without any, and while a removal is under way.
    void ask(const std::vector<const ArchivedEntry*>& entries);

    Q_INVOKABLE void accept();

    // Also of what is told afterwards; no effect while mail is being removed.
    Q_INVOKABLE void close();

    // The failures as lines, for the clipboard.
    [[nodiscard]] QString failureLines() const;

    [[nodiscard]] Step step() const { return step_; }

    [[nodiscard]] QString title() const;
    [[nodiscard]] QString line() const;
    [[nodiscard]] QVariantList items() const;
    [[nodiscard]] int itemsLeftOut() const;

    // Empty where every original is known to be in Mail.
    [[nodiscard]] QString onlyTitle() const;
    [[nodiscard]] QString onlyText() const;
    [[nodiscard]] QString onlyTick() const;

    [[nodiscard]] bool isTicked() const { return isTicked_; }

    void setTicked(bool ticked);

    [[nodiscard]] bool canAccept() const;
    [[nodiscard]] QString note() const;

    [[nodiscard]] int count() const { return static_cast<int>(items_.size()); }

    [[nodiscard]] QVariantList figures() const;
    [[nodiscard]] QVariantList failures() const;

  Q_SIGNALS:
    void changed();

  private:
    struct Item {
        ArchivedEntry entry;
        ArchivedOriginalPresenceStatus status = ArchivedOriginalPresenceStatus::unknown;
    };

    void handleEnd();
    void setStep(Step step);
    [[nodiscard]] std::int64_t countOf(ArchivedOriginalPresenceStatus status) const;
    [[nodiscard]] std::int64_t onlyCount() const;
    [[nodiscard]] bool isConnected() const;
    [[nodiscard]] const Item* itemOf(const std::string& entryID) const;

    CorvaneViewModel& model_;
    Step step_ = Step::Closed;
    std::vector<Item> items_; // the only copies first
    bool isTicked_ = false;
    bool isOurs_ = false; // the removal that is under way
};

} // namespace corvane
