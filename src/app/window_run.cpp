#include "app/window_run.h"

#include <memory>
#include <system_error>
#include <utility>
#include <vector>

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QSocketNotifier>

#include "app/blocked_window.h"
#include "app/open_requests.h"
#include "app/single_instance.h"
#include "app/window_load.h"
#include "model/corvane_view_model.h"
#include "model/leftover_removal.h"
#include "model/model_context.h"
#include "model/owned_platform.h"
#include "platform/platform.h"
#include "platform/processes/quit_signals.h"
#include "platform/system_menus.h"
#include "records/logs/console_log.h"
#include "screens/shell/window_frame.h"
#include "screens/shell/window_model.h"

namespace corvane {

namespace {

constexpr int otherWindowStatus = 4;

// The logs tell of this start only.
void resetLogs(ModelContext& context) {
    context.performanceLog.reset();
    context.startupLog.reset();
    context.startupLog.mark("applicationWillFinishLaunching reset logs");
}

// Stands for the home, also where it can't be made: the first use of it says so to the user.
QString supportFolder(const ModelContext& context) {
    try {
        return QString::fromStdString(context.support.baseDirectory(true));
    } catch (const std::system_error& error) {
        messageLine(error.what());
        return QString::fromStdString(context.support.baseDirectory(false));
    }
}

// Absent when this start goes on as the first one.
std::optional<WindowOutcome> leaveToFirst(SingleInstance& instance, const WindowOptions& options) {
    if (instance.sendToFirst(QString::fromStdString(options.address))) return WindowOutcome();
    messageLine(instance.obstacle().toStdString());
    switch (runBlockedWindow(instance, options.address, options.quitSignals)) {
    case BlockedEnd::becameFirst:
        return std::nullopt;
    case BlockedEnd::handedOver:
        return WindowOutcome();
    case BlockedEnd::givenUp:
        break;
    }
    return WindowOutcome{otherWindowStatus, std::nullopt};
}

// Of the system's menu, where there is one. `window` may still be null when one is chosen.
std::vector<platform::MenuCommand> menuCommands(WindowModel*& window) {
    const auto command = [&window](const char* title, WindowModel::Command what) {
        return platform::MenuCommand{title, [&window, what] {
                                         if (window != nullptr) window->request(what);
                                     }};
    };
    return {command("归档位置…", WindowModel::Command::Places),
            command("导出配置备份…", WindowModel::Command::ExportSettings),
            command("导入配置备份…", WindowModel::Command::ImportSettings)};
}

void raiseWindow(QQuickWindow& window) {
    if (window.windowStates().testFlag(Qt::WindowMinimized)) window.showNormal();
    window.show();
    window.raise();
    window.requestActivate();
}

// Once, when the window has been painted for the first time.
template <class Reaction>
void onFirstFrame(QQuickWindow& shown, QObject& receiver, Reaction reaction) {
    QObject::connect(&shown, &QQuickWindow::frameSwapped, &receiver, std::move(reaction),
                     // NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange): a flag joined to a kind
                     static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
}

// Addresses come from later starts of the program and from the system.
void connectAddresses(WindowModel& window, QQuickWindow& shown, const SingleInstance& instance,
                      const OpenRequests& requests) {
    const auto open = [&window, &shown](const QString& address) {
        raiseWindow(shown);
        window.openAddress(address);
    };
    QObject::connect(&instance, &SingleInstance::requested, &window, open);
    QObject::connect(&requests, &OpenRequests::requested, &window, open);
}

// The window ends, to be opened again over the mail that the user chose.
void connectOtherMail(WindowModel& window, WindowOutcome& outcome) {
    const auto reopen = [&outcome](const QString& home) {
        outcome.reopenHome = home.toStdString();
        QCoreApplication::quit();
    };
    QObject::connect(window.sampleStore(), &SampleStore::ready, &window, reopen);
    QObject::connect(window.otherMail(), &OtherMail::ready, &window, reopen);
}

// Nobody is there to be asked: the run at work is ended in good order, then the program.
void connectQuitSignals(WindowModel& window, const QSocketNotifier& notifier, int quitSignals) {
    QObject::connect(&notifier, &QSocketNotifier::activated, &window, [&window, quitSignals] {
        platform::drainQuitSignals(quitSignals);
        QObject::connect(&window, &WindowModel::stopped, qApp, &QCoreApplication::quit);
        window.stopArchiving();
    });
}

} // namespace

WindowOutcome runWindow(const WindowOptions& options) {
    const OwnedPlatform system = makeOwnedPlatform(options.home);
    ModelContext context(*system);
    WindowModel* openWindow = nullptr;
    const auto menuPolicy = platform::enforceMenuPolicy(menuCommands(openWindow));
    SingleInstance instance(supportFolder(context));
    if (!instance.tryBecomeFirst()) {
        if (const auto outcome = leaveToFirst(instance, options)) return *outcome;
    }

    resetLogs(context);
    CorvaneViewModel model(context);
    WindowModel window(model);
    openWindow = &window; // NOLINT(clang-analyzer-deadcode.DeadStores): the menu refers to it
    WindowOutcome outcome;
    QQmlApplicationEngine engine;
    QQuickWindow* shown =
        loadWindow(engine, QStringLiteral("Main"), {{QStringLiteral("app"), QVariant::fromValue(&window)}});
    if (shown == nullptr) return {EXIT_FAILURE, std::nullopt};
    WindowFrame frame(*shown, context.settings);
    LeftoverRemoval leftovers(context);
    // Nothing large happens before it.
    onFirstFrame(*shown, window, [&] {
        window.startUp();
        leftovers.start();
    });
    shown->show();

    const OpenRequests openRequests;
    connectAddresses(window, *shown, instance, openRequests);
    connectOtherMail(window, outcome);
    const QSocketNotifier quitRequests(options.quitSignals, QSocketNotifier::Read);
    connectQuitSignals(window, quitRequests, options.quitSignals);
    window.openAddress(QString::fromStdString(options.address));
    outcome.exitStatus = QGuiApplication::exec();
    frame.remember();
    return outcome;
}

} // namespace corvane
