// What several states of the window have in common: mail, archives and runs before the window is there, and
// steps in it.
#pragma once

#include <QQuickWindow>
#include <QString>

#include "screens/support/window_scene.h"

namespace corvane::testing {

// Two years and two folders of the made-up mail.
void tickSome(WindowScene& scene);
void fillAndTick(WindowScene& scene);
void openConfirmation(WindowScene& scene);

// Of the ticked messages those of 2018 have their files; the others fail.
void runToItsEnd(WindowScene& scene);

// Mail that the real scanner reads, in a store made by the script of the sample mail.
void makeStoreOf(WindowScene& scene, const QString& messages,
                 const QString& option = QStringLiteral("--odd"));
void makeStore(WindowScene& scene);
void scanStore(WindowScene& scene);

// Behind a whole scan, which can be brought back.
void cancelHalfWay(WindowScene& scene, QQuickWindow& window);

// Mail up to 2021 archived by a real run, which proves it.
void archiveUpTo2021(WindowScene& scene);
void archiveOldMail(WindowScene& scene);

// A click on the part of this name.
void press(QQuickWindow& window, const char* name);

// To the screen of this key.
void go(WindowScene& scene, QQuickWindow& window, Qt::Key place);
void lookAtMail(WindowScene& scene, QQuickWindow& window);
void lookAtArchived(WindowScene& scene, QQuickWindow& window);
void lookAtSpace(WindowScene& scene, QQuickWindow& window);

// After some of the oldest originals have gone from Mail.
void checkArchived(WindowScene& scene, QQuickWindow& window);

} // namespace corvane::testing
