#include "app/blocked_window.h"

#include <thread>

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QSocketNotifier>

#include "app/window_load.h"
#include "platform/processes/quit_signals.h"
#include "screens/shell/start/blocked_start.h"

namespace corvane {

BlockedEnd runBlockedWindow(SingleInstance& instance, const std::string& address, int quitSignals) {
    BlockedStart start(QStringLiteral("现在打不开 Corvane"), instance.obstacle());
    BlockedEnd end = BlockedEnd::givenUp;
    const auto leave = [&end](BlockedEnd way) {
        end = way;
        QCoreApplication::quit();
    };
    std::jthread asking;
    QObject::connect(&start, &BlockedStart::retryRequested, &start, [&] {
        if (instance.tryBecomeFirst()) return leave(BlockedEnd::becameFirst);
        // The answer takes its time, and the window can be closed meanwhile.
        asking = std::jthread([&] {
            const bool answered = instance.sendToFirst(QString::fromStdString(address));
            QMetaObject::invokeMethod(&start, [&start, &leave, answered] {
                start.setRetrying(false);
                if (answered) leave(BlockedEnd::handedOver);
            });
        });
    });
    const QSocketNotifier quitRequests(quitSignals, QSocketNotifier::Read);
    QObject::connect(&quitRequests, &QSocketNotifier::activated, qApp, &QCoreApplication::quit);

    QQmlApplicationEngine engine;
    QQuickWindow* shown = loadWindow(engine, QStringLiteral("BlockedStartWindow"),
                                     {{QStringLiteral("start"), QVariant::fromValue(&start)}});
    if (shown == nullptr) return end;
    shown->show();
    shown->requestActivate();
    QGuiApplication::exec();
    return end;
}

} // namespace corvane
