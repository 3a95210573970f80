// What the window asks of the desktop: opening files and addresses, the clipboard. One object a program run,
// on the main thread; tests derive from it.
#pragma once

#include <QString>
#include <QUrl>

namespace corvane {

class DesktopActions {
  public:
    virtual ~DesktopActions() = default;

    // With the program that the system has for it; false when there is none.
    virtual bool open(const QUrl& url);

    // Shows a file in the file manager; false when that can't be done.
    virtual bool reveal(const QString& path);

    virtual void copy(const QString& text);
};

} // namespace corvane
