// The real window for tests that drive it from outside: it answers where its parts stand and what has the
// keyboard, so that no test needs to know a place on the screen. Everything else is the program's own.
//
// Questions are lines on the standard input; each answer is a line of JSON on the standard output, {} for
// nothing. What the keys before it have set off is done by then, as far as no background job is in it:
//   part NAME   the first visible part of that object name; A/B is a part B within a part A
//   focus       the part that has the keyboard, with the names of what it stands in
//   keys        how many keys have been let go, and whether any key would be taken now
//   clipboard   the text on it
#include <algorithm>
#include <array>
#include <csignal>

#include <QClipboard>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QKeyEvent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSocketNotifier>
#include <QTextStream>
#include <unistd.h>

#include "app/window_run.h"
#include "platform/processes/quit_signals.h"
#include "screens/controls/focus/keyboard_focus.h"
#include "screens/controls/theme/appearance.h"
#include "screens/controls/theme/fonts.h"

namespace corvane::testing {

namespace {

// The overlay's items stand last and above.
QQuickItem* partOf(QQuickItem* item, const QString& name) {
    const QList<QQuickItem*> children = item->childItems();
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        if (!(*child)->isVisible() || (*child)->opacity() == 0) continue;
        if ((*child)->objectName() == name) return *child;
        if (QQuickItem* found = partOf(*child, name)) return found;
    }
    return nullptr;
}

QQuickItem* partOf(const QStringList& path) {
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        const auto* quick = qobject_cast<QQuickWindow*>(window);
        if (quick == nullptr || !quick->isVisible()) continue;
        QQuickItem* item = quick->contentItem();
        for (const QString& name : path) item = item == nullptr ? nullptr : partOf(item, name);
        if (item != nullptr) return item;
    }
    return nullptr;
}

// What tells the eye where the keyboard is: a ring, the edge of a field, a selected row.
bool showsFocus(const QQuickItem* item) {
    if (!item->isVisible()) return false;
    const QByteArray kind = item->metaObject()->className();
    if (kind.startsWith("FocusRing_")) return true;
    if (item->property("showFocus").toBool() && !kind.startsWith("TickBox_")) return true;
    if (item->property("selected").toBool() && item->property("listFocused").toBool()) return true;
    const QList<QQuickItem*> children = item->childItems();
    return std::any_of(children.begin(), children.end(), showsFocus);
}

QJsonObject described(const QQuickItem* item) {
    const QRectF place = item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
    QJsonArray names;
    for (const QQuickItem* around = item; around != nullptr; around = around->parentItem())
        if (!around->objectName().isEmpty()) names.append(around->objectName());
    QJsonObject answer;
    answer[u"x"] = place.x();
    answer[u"y"] = place.y();
    answer[u"width"] = place.width();
    answer[u"height"] = place.height();
    answer[u"names"] = names;
    answer[u"enabled"] = item->isEnabled();
    answer[u"focus"] = item->hasActiveFocus();
    answer[u"showsFocus"] = showsFocus(item);
    for (const char* property : {"text", "title", "headline", "currentIndex", "count", "tick", "figure"}) {
        const QVariant value = item->property(property);
        if (value.isValid()) answer.insert(QLatin1String(property), QJsonValue::fromVariant(value));
    }
    return answer;
}

// For a moment what has just appeared takes no Return.
bool takesEveryKey(const QQuickWindow* window) {
    const QQmlEngine* engine = window == nullptr ? nullptr : qmlEngine(window);
    if (engine == nullptr) return true;
    const int type = qmlTypeId("Corvane", 1, 0, "KeyboardFocus");
    auto* keyboard = const_cast<QQmlEngine*>(engine)->singletonInstance<KeyboardFocus*>(type);
    return keyboard == nullptr || !keyboard->awaitsFreshKey();
}

class Answers : public QObject {
  public:
    Answers() {
        qGuiApp->installEventFilter(this);
        connect(&questions_, &QSocketNotifier::activated, this, [this] { read(); });
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyRelease && watched->isWindowType()) ++keys_;
        return false;
    }

  private:
    void read() {
        std::array<char, 4096> bytes{};
        const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
        if (count <= 0) return questions_.setEnabled(false);
        unread_.append(bytes.data(), count);
        for (qsizetype end = unread_.indexOf('\n'); end >= 0; end = unread_.indexOf('\n')) {
            const QString question = QString::fromUtf8(unread_.left(end));
            unread_.remove(0, end + 1);
            // Parts move the keyboard with steps that they queue, and these queue others.
            for (int round = 0; round < 3; ++round)
                QCoreApplication::processEvents(QEventLoop::ExcludeSocketNotifiers);
            const QByteArray answer = QJsonDocument(answered(question)).toJson(QJsonDocument::Compact);
            QTextStream(stdout) << answer << Qt::endl;
        }
    }

    [[nodiscard]] QJsonObject answered(const QString& question) const {
        if (question == QLatin1String("clipboard"))
            return {{QStringLiteral("text"), QGuiApplication::clipboard()->text()}};
        const auto* window = qobject_cast<QQuickWindow*>(QGuiApplication::focusWindow());
        if (question == QLatin1String("keys"))
            return {{QStringLiteral("keys"), keys_}, {QStringLiteral("ready"), takesEveryKey(window)}};
        const QQuickItem* item = question == QLatin1String("focus")
                                     ? (window == nullptr ? nullptr : window->activeFocusItem())
                                     : partOf(question.section(u' ', 1).split(u'/'));
        return item == nullptr ? QJsonObject() : described(item);
    }

    QSocketNotifier questions_{STDIN_FILENO, QSocketNotifier::Read};
    QByteArray unread_;
    int keys_ = 0;
};

int run(const QStringList& arguments) {
    useWindowFonts();
    const Appearance appearance(arguments.contains(QLatin1String("dark")) ? Appearance::Scheme::dark
                                                                          : Appearance::Scheme::light);
    const Answers answers;
    WindowOptions options;
    options.home = arguments.value(arguments.indexOf(QLatin1String("--home")) + 1).toStdString();
    options.quitSignals = platform::catchQuitSignals();
    for (;;) {
        const WindowOutcome outcome = runWindow(options);
        if (!outcome.reopenHome) return outcome.exitStatus;
        options.home = *outcome.reopenHome;
    }
}

} // namespace

} // namespace corvane::testing

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    corvane::thinTextStems();
    const QGuiApplication application(argc, argv);
    return corvane::testing::run(QGuiApplication::arguments());
}
