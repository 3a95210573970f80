// What the archive sheet shows of a run that has ended: figures of messages that add up to what was chosen,
// the failures by reason, the messages of which several versions were kept. Values, made from the run's
// result.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include "records/archived/archive_records.h"

namespace corvane {

// The run counts files where a message has several versions; here every message counts once. What goes beyond
// stands behind the figures.
struct ArchiveResultFigures {
    std::int64_t chosen = 0;
    std::int64_t archived = 0;
    std::int64_t skipped = 0;
    std::int64_t failed = 0;
    std::int64_t notTried = 0;      // only after a cancel
    std::int64_t furtherCopies = 0; // files beyond one a message

    static ArchiveResultFigures of(const EmailArchiveRunResult& result, std::int64_t chosen);

    friend bool operator==(const ArchiveResultFigures&, const ArchiveResultFigures&) = default;
};

struct ArchiveResultView {
    Q_GADGET
    QML_VALUE_TYPE(archiveResultView)
    Q_PROPERTY(QString title MEMBER title CONSTANT)
    Q_PROPERTY(QString subtitle MEMBER subtitle CONSTANT)
    Q_PROPERTY(QString symbol MEMBER symbol CONSTANT)
    Q_PROPERTY(bool isSafe MEMBER isSafe CONSTANT)
    Q_PROPERTY(QVariantList tiles MEMBER tiles CONSTANT)
    Q_PROPERTY(QStringList warnings MEMBER warnings CONSTANT)
    Q_PROPERTY(QString failureTitle MEMBER failureTitle CONSTANT)
    Q_PROPERTY(QVariantList failureGroups MEMBER failureGroups CONSTANT)
    Q_PROPERTY(QString variantTitle MEMBER variantTitle CONSTANT)
    Q_PROPERTY(QStringList variants MEMBER variants CONSTANT)
    Q_PROPERTY(QString note MEMBER note CONSTANT)
    Q_PROPERTY(QString retryTitle MEMBER retryTitle CONSTANT)
    Q_PROPERTY(QString restTitle MEMBER restTitle CONSTANT)
    Q_PROPERTY(QString nextStep MEMBER nextStep CONSTANT)
    Q_PROPERTY(QString endText MEMBER endText CONSTANT)
    Q_PROPERTY(QString tone MEMBER tone CONSTANT)

  public:
    QString title;
    QString subtitle;
    QString symbol;
    bool isSafe = false;        // everything that was chosen has its proven copy
    QVariantList tiles;         // caption, figure, line, meaning
    QStringList warnings;       // of the archive itself
    QString failureTitle;       // empty without failures
    QVariantList failureGroups; // count, reason, subjects, more
    QString variantTitle;       // empty without variants
    QStringList variants;
    QString note;
    QString retryTitle; // empty where there is nothing to try again
    QString restTitle;  // of the way to what a cancelled run didn't come to; empty without
    QString nextStep;   // what is worth doing now; empty where nothing was archived
    QString endText;    // the whole in one short line, for a run that ended behind other work
    QString tone;       // of a control: safe, attention, or empty for a run that was only cancelled

    static ArchiveResultView of(const EmailArchiveRunResult& result, std::int64_t chosen);
};

namespace screens {

// All failures, one a line: reason, subject and file, parted by tabs.
QString failureList(const std::vector<EmailArchiveFailure>& failures);

// All warnings of several versions, one a line.
QString variantList(const std::vector<std::string>& warnings);

} // namespace screens

} // namespace corvane
