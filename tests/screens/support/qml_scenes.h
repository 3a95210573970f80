// What the tst_*.qml files ask of the program below the window. Main thread.
#pragma once

#include <memory>

#include <QObject>

#include "screens/support/window_scene.h"

namespace corvane::testing {

class QmlScenes : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::WindowModel* app READ app NOTIFY begun)

  public:
    // Of an empty home before `begin`.
    [[nodiscard]] WindowModel* app() { return &scene().window(); }

    // Another program over another home with mail of many years.
    Q_INVOKABLE void begin(bool withDestination);

    // The same over the library of library_scene.h.
    Q_INVOKABLE void beginLibrary();

    // The cloud keeps the file of that mail of 2021 for itself.
    Q_INVOKABLE void evict(const QString& name);

    Q_INVOKABLE void settle() { scene().settle(); }

    Q_INVOKABLE [[nodiscard]] bool isIdle() { return scene().model().context().tasks.isIdle(); }

    Q_INVOKABLE [[nodiscard]] int treeRow(const QString& title) { return scene().treeRow(title); }

    // The next run waits at its beginning until it is let go.
    Q_INVOKABLE void holdRuns();

    Q_INVOKABLE void letGo() { scene().release(); }

    // Below the home; its path.
    Q_INVOKABLE [[nodiscard]] QString makeFolders(const QString& base, int count);

    // In place of all others, messages "邮件 0" and on, newest first: the first five of 2022, the others of
    // 2021. Every fourth has an attachment; `subject` is that of the first one.
    Q_INVOKABLE void publish(int count, const QString& subject);

    // There are no messages, and a scan finds no index of Mail.
    Q_INVOKABLE void fail();

  Q_SIGNALS:
    void begun();

  private:
    [[nodiscard]] WindowScene& scene();
    void show(std::unique_ptr<WindowScene> next);

    std::unique_ptr<WindowScene> scene_;
};

} // namespace corvane::testing
