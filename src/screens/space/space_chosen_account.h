// What the screen says of the account whose senders it shows, and of those that are ticked. A value, made
// when QML asks.
#pragma once

#include <QMetaType>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace corvane {

struct SpaceChosenAccount {
    Q_GADGET
    QML_VALUE_TYPE(spaceChosenAccount)
    Q_PROPERTY(bool isThere MEMBER isThere CONSTANT)
    Q_PROPERTY(QString title MEMBER title CONSTANT)
    Q_PROPERTY(QString countLine MEMBER countLine CONSTANT)
    Q_PROPERTY(QString tickedTitle MEMBER tickedTitle CONSTANT)
    Q_PROPERTY(QString tickedLine MEMBER tickedLine CONSTANT)
    Q_PROPERTY(int tickState MEMBER tickState CONSTANT)

  public:
    bool isThere = false; // else all is empty
    QString title;
    QString countLine;
    QString tickedTitle;
    QString tickedLine;
    int tickState = 0; // of all senders, as the tick box of the controls has it
};

} // namespace corvane
