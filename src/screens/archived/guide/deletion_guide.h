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
#include "screens/archived/guide/guide_proof.h"
#include "screens/desktop/desktop_actions.h"

namespace corvane {

class DeletionGuide : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the archived overview")
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY changed)
    Q_PROPERTY(bool isReady READ isReady NOTIFY changed)
    Q_PROPERTY(corvane::GuideProof* proof READ proof CONSTANT)
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
    [[nodiscard]] bool isReady() const { return isOpen_ && !proof_.isComparing() && !targets_.empty(); }

    [[nodiscard]] GuideProof* proof() { return &proof_; }

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

  Q_SIGNALS:
    void changed();
    void failed(const QString& text);

  private:
    void find();
    void findTargets();
    void addTargets();
    void setProofScope();
    [[nodiscard]] const SmartMailboxGuideTarget* target() const;

    CorvaneViewModel& model_;
    DesktopActions& desktop_;
    GuideProof proof_;
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
