// The archive folder as QML shows it: the same value for every screen, with what each says of it. Made from
// what the model knows; no disk is touched.
#pragma once

#include <QMetaType>
#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/texts/destination_texts.h"

namespace corvane {

struct DestinationItem {
    Q_GADGET
    QML_VALUE_TYPE(destinationItem)
    Q_PROPERTY(bool isChosen MEMBER isChosen CONSTANT)
    Q_PROPERTY(bool isMissing MEMBER isMissing CONSTANT)
    Q_PROPERTY(QString symbol MEMBER symbol CONSTANT)
    Q_PROPERTY(QString destinationName MEMBER destinationName CONSTANT)
    Q_PROPERTY(QString destinationPath MEMBER destinationPath CONSTANT)
    Q_PROPERTY(QString fullPath MEMBER fullPath CONSTANT)
    Q_PROPERTY(QString place MEMBER place CONSTANT)
    Q_PROPERTY(QString shortName MEMBER shortName CONSTANT)
    Q_PROPERTY(QString line MEMBER line CONSTANT)
    Q_PROPERTY(QUrl folder MEMBER folder CONSTANT)
    Q_PROPERTY(corvane::DestinationRemark archiveRemark MEMBER archiveRemark CONSTANT)
    Q_PROPERTY(corvane::DestinationRemark locationBarRemark MEMBER locationBarRemark CONSTANT)

  public:
    bool isChosen = false;
    bool isMissing = false; // chosen, but out of reach
    QString symbol;
    QString destinationName;
    QString destinationPath; // with the home as "~"; empty where none is chosen
    QString fullPath;        // empty where none is chosen
    QString place;           // provider or disk and folder: "坚果云 · 邮件归档"
    QString shortName;       // the cloud service where there is one
    QString line;            // below the short name: kind of place, free space or what is wrong
    QUrl folder;             // to begin at when another one is chosen: the user's home without a destination
    DestinationRemark archiveRemark;
    DestinationRemark locationBarRemark;

    // Main thread.
    static DestinationItem of(CorvaneViewModel& model);
};

// What the model knows of the destination; refers to it, so not to be kept. Main thread.
DestinationView destinationView(CorvaneViewModel& model);

} // namespace corvane
