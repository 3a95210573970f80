// A desktop that opens nothing and keeps what it was asked for.
#pragma once

#include <QStringList>

#include "screens/desktop/desktop_actions.h"

namespace corvane::testing {

class RecordingDesktop : public DesktopActions {
  public:
    bool open(const QUrl& url) override {
        opened += url.toString(QUrl::FullyEncoded);
        return opens;
    }

    bool reveal(const QString& path) override {
        revealed += path;
        return opens;
    }

    void copy(const QString& text) override { copied = text; }

    bool opens = true; // false for a system without such programs
    QStringList opened;
    QStringList revealed;
    QString copied;
};

} // namespace corvane::testing
