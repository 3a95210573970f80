// What the confirmation of an archive run says besides its list: how much is ticked, whether there is room,
// and whether it can start. A value, made when QML asks.
#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace corvane {

struct ArchiveConfirmation {
    Q_GADGET
    QML_VALUE_TYPE(archiveConfirmation)
    Q_PROPERTY(bool isLoading MEMBER isLoading CONSTANT)
    Q_PROPERTY(bool canStart MEMBER canStart CONSTANT)
    Q_PROPERTY(QString archiveButtonTitle MEMBER archiveButtonTitle CONSTANT)
    Q_PROPERTY(QString archiveSelectionSummary MEMBER archiveSelectionSummary CONSTANT)
    Q_PROPERTY(QString archiveScopeTitle MEMBER archiveScopeTitle CONSTANT)
    Q_PROPERTY(QString archiveEmptyTitle MEMBER archiveEmptyTitle CONSTANT)
    Q_PROPERTY(QString archiveEmptyDescription MEMBER archiveEmptyDescription CONSTANT)
    Q_PROPERTY(QString tickedText MEMBER tickedText CONSTANT)
    Q_PROPERTY(QString spaceText MEMBER spaceText CONSTANT)
    Q_PROPERTY(bool isSpaceShort MEMBER isSpaceShort CONSTANT)
    Q_PROPERTY(QString footnote MEMBER footnote CONSTANT)
    Q_PROPERTY(QStringList sizeTitles MEMBER sizeTitles CONSTANT)

  public:
    bool isLoading = false; // the list isn't complete yet
    bool canStart = false;
    QString archiveButtonTitle; // also says why it can't start
    QString archiveSelectionSummary;
    QString archiveScopeTitle;
    QString archiveEmptyTitle; // where the list is empty, and why
    QString archiveEmptyDescription;
    QString tickedText;
    QString spaceText; // needed and free
    bool isSpaceShort = false;
    QString footnote;
    QStringList sizeTitles; // of the minimum sizes, in their order
};

} // namespace corvane
