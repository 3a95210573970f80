// The way from archived mail to free space: what the user does in Apple Mail, given only for years whose
// originals were all looked up and compared. Main thread. Opening it asks Mail again where that was long ago,
// and compares what wasn't compared; a year that can't be cleaned any more leaves the guide at once.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include "library/overview/smart_mailbox_guide.h"
#include "model/corvane_view_model.h"
#include "screens/archived/figures/year_status.h"
#include "screens/desktop/desktop_actions.h"

namespace corvane {

class DeletionGuide : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the archived overview")
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY changed)
    Q_PROPERTY(bool isReady READ isReady NOTIFY changed)
    Q_PROPERTY(bool isComparing READ isComparing NOTIFY changed)
    Q_PROPERTY(bool isProving READ isProving NOTIFY changed)
    Q_PROPERTY(double fraction READ fraction NOTIFY changed)
    Q_PROPERTY(QString proofTitle READ proofTitle NOTIFY changed)
    Q_PROPERTY(QString proofLine READ proofLine NOTIFY changed)
    Q_PROPERTY(QString proofCount READ proofCount NOTIFY changed)
    Q_PROPERTY(QStringList spans READ spans NOTIFY changed)
    Q_PROPERTY(int current READ current WRITE setCurrent NOTIFY changed)
    Q_PROPERTY(QString condition READ condition NOTIFY changed)
    Q_PROPERTY(QString name READ name NOTIFY changed)
    Q_PROPERTY(QVariantList steps READ steps NOTIFY changed)
    Q_PROPERTY(QString leftOut READ leftOut NOTIFY changed)

  public:
    // Both must outlive it.
    DeletionGuide(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent = nullptr);

    // For the years of the group with that key that may be cleaned, or only wait for a comparison.
    // `asksMail`: the originals were looked up long ago.
    void open(const std::string& key, bool asksMail);
    Q_INVOKABLE void close();

    void show(SharedOverview overview, OriginalKnowledge knowledge);
    void handleProofProgress();

    [[nodiscard]] bool isOpen() const { return isOpen_; }

    // There is a year to be cleaned, and nothing of it is being looked at.
    [[nodiscard]] bool isReady() const { return isOpen_ && !isComparing() && !targets_.empty(); }

    [[nodiscard]] bool isComparing() const;

    [[nodiscard]] bool isProving() const { return model_.archiving().proof.isProving(); }

    [[nodiscard]] double fraction() const;

    // The first step: what was compared, or is being compared.
    [[nodiscard]] QString proofTitle() const;
    [[nodiscard]] QString proofLine() const;
    [[nodiscard]] QString proofCount() const;

    // One a guide: runs of adjoining years, by account where the group stands for several.
    [[nodiscard]] QStringList spans() const;

    [[nodiscard]] int current() const { return current_; }

    void setCurrent(int current);

    // Of the current guide; empty unless it is ready.
    [[nodiscard]] QString condition() const;
    [[nodiscard]] QString name() const;

    // Each with `title` and `lines`.
    [[nodiscard]] QVariantList steps() const;

    // Which years stay out, and why; empty for none.
    [[nodiscard]] QString leftOut() const;

    Q_INVOKABLE void copyCondition();
    Q_INVOKABLE void copyName();

    // `failed` follows where the system has no Apple Mail.
    Q_INVOKABLE void openMail();
    Q_INVOKABLE void prove();

    Q_INVOKABLE void cancelProof() { model_.archiving().proof.cancel(); }

  Q_SIGNALS:
    void changed();
    void failed(const QString& text);

  private:
    void find();
    void findTargets();
    [[nodiscard]] const SmartMailboxGuideTarget* target() const;

    CorvaneViewModel& model_;
    DesktopActions& desktop_;
    bool isOpen_ = false;
    std::string key_;
    std::vector<std::int64_t> wantedYears_; // when it was opened
    SharedOverview overview_;
    OriginalKnowledge knowledge_ = OriginalKnowledge::loading;
    const ArchivedOverviewGroup* group_ = nullptr; // of the overview
    const ArchivedOverviewStats::Group* stats_ = nullptr;
    std::vector<SmartMailboxGuideTarget> targets_;
    int current_ = 0;
};

} // namespace corvane
