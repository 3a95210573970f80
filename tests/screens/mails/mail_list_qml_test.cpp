// Runs the tst_*.qml files of this folder: the real screen over a real model, whose messages are made here.
// Whatever the engine warns of fails the test in which it happens.
#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

#include "screens/controls/theme/appearance.h"
#include "screens/controls/theme/fonts.h"
#include "screens/mails/mail_samples.h"
#include "screens/shell/window_model.h"
#include "support/temporary_home.h"

namespace corvane::testing {

// One run of the program over a home of its own.
class Samples : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::WindowModel* app READ app CONSTANT)

  public:
    [[nodiscard]] WindowModel* app() { return &window_; }

    // Messages "邮件 0" and on, newest first: the first five of 2022, the others of 2021. Every fourth has an
    // attachment; `subject` is that of the first one.
    Q_INVOKABLE void publish(int count, const QString& subject) {
        MessageList messages;
        for (int number = 0; number < count; ++number) messages.push_back(made(number));
        if (!subject.isEmpty() && count > 0) messages.front().subject = subject.toStdString();
        model_.catalog().setMessages(
            MessageSet::make(std::make_shared<const MessageList>(std::move(messages)), false), {});
    }

    // Nothing is under way in the background.
    Q_INVOKABLE [[nodiscard]] bool isIdle() const { return context_.tasks.isIdle(); }

    Q_INVOKABLE void fail() {
        model_.catalog().setMessages(std::make_shared<const MessageSet>(), {});
        model_.scanFlow().scan(); // this home has no Mail index
    }

  private:
    MailMessageRecord made(int number) {
        const std::string name = std::to_string(number);
        MailMessageRecord message = sampleMessage(home_.write("Library/Mail/V10/A/收件箱.mbox/" + name, "x"));
        message.subject = "邮件 " + name;
        message.date = dateIn(number < 5 ? 2022 : 2021) - std::chrono::minutes(number);
        message.messageIdentifier = SharedText(name);
        message.preview = "正文 " + name;
        if (number % 4 == 0) message.attachments = {{Uuid::random(), "图.pdf", "", 1'000, {}}};
        return message;
    }

    TemporaryHome home_;
    ModelContext context_{home_.platform()};
    CorvaneViewModel model_{context_};
    WindowModel window_{model_};
};

class MailListSetup : public QObject {
    Q_OBJECT

  public Q_SLOTS:

    void applicationAvailable() {
        useWindowFonts();
        appearance_.emplace(Appearance::Scheme::light);
    }

    void qmlEngineAvailable(QQmlEngine* engine) {
        engine->addImportPath(QStringLiteral(":/qt/qml"));
        connect(engine, &QQmlEngine::warnings, this, [](const QList<QQmlError>& warnings) {
            for (const QQmlError& warning : warnings)
                QTest::qFail(qPrintable(warning.toString()), __FILE__, __LINE__);
        });
        samples_.emplace();
        engine->rootContext()->setContextProperty(QStringLiteral("samples"), &*samples_);
    }

    void cleanupTestCase() {
        samples_.reset();
        appearance_.reset();
    }

  private:
    std::optional<Appearance> appearance_;
    std::optional<Samples> samples_;
};

} // namespace corvane::testing

using corvane::testing::MailListSetup;
QUICK_TEST_MAIN_WITH_SETUP(mails, MailListSetup)

#include "mail_list_qml_test.moc"
