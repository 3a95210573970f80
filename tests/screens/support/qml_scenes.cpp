#include "screens/support/qml_scenes.h"

#include <filesystem>
#include <string>
#include <utility>

#include <QCoreApplication>

#include "screens/support/library_scene.h"
#include "screens/support/mail_samples.h"

namespace corvane::testing {

namespace {

MailMessageRecord numberedMessage(const TemporaryHome& home, int number) {
    const std::string name = std::to_string(number);
    MailMessageRecord message = sampleMessage(home.write("Library/Mail/V10/A/收件箱.mbox/" + name, "x"));
    message.subject = "邮件 " + name;
    message.date = dateIn(number < 5 ? 2022 : 2021) - std::chrono::minutes(number);
    message.messageIdentifier = SharedText(name);
    message.preview = "正文 " + name;
    if (number % 4 == 0) message.attachments = {{Uuid::random(), "图.pdf", "", 1'000, {}}};
    return message;
}

// A view that was told to go stays until the loop runs, and would still be bound to the scene that goes.
void deleteWhatGoes() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

WindowScene& QmlScenes::scene() {
    if (!scene_) scene_ = std::make_unique<WindowScene>();
    return *scene_;
}

void QmlScenes::begin(bool withDestination) {
    deleteWhatGoes();
    auto next = std::make_unique<WindowScene>();
    next->fill(withDestination ? WindowScene::Destination::chosen : WindowScene::Destination::none);
    next->showLatest();
    show(std::move(next));
}

void QmlScenes::beginLibrary() {
    deleteWhatGoes();
    auto next = std::make_unique<WindowScene>();
    fillLibrary(*next);
    show(std::move(next));
}

void QmlScenes::evict(const QString& name) {
    const std::string root = scene().model().archiving().destinations.transferDestination().value();
    const std::string file = name.toStdString() + ".eml";
    std::filesystem::rename(root + "/2021/" + file, root + "/2021/." + file + ".icloud");
    scene().model().library().loader.loadEmailArchiveIndex(root, true);
    scene().settle();
}

void QmlScenes::show(std::unique_ptr<WindowScene> next) {
    // The QML leaves the old model before it goes.
    std::swap(scene_, next);
    Q_EMIT begun();
}

void QmlScenes::holdRuns() {
    scene().platform().onAvailableCapacity([this] { scene().waitForRelease(); });
}

QString QmlScenes::makeFolders(const QString& base, int count) {
    for (int number = 0; number < count; ++number)
        scene().home().makeFolder((base + QStringLiteral("/f%1").arg(number)).toStdString());
    return QString::fromStdString(scene().home().at(base.toStdString()));
}

void QmlScenes::publish(int count, const QString& subject) {
    auto messages = std::make_shared<MessageList>();
    for (int number = 0; number < count; ++number)
        messages->push_back(numberedMessage(scene().home(), number));
    if (!subject.isEmpty() && count > 0) messages->front().subject = subject.toStdString();
    scene().model().mail().catalog.setMessages(MessageSet::make(messages, false), {});
}

void QmlScenes::fail() {
    scene().model().mail().catalog.setMessages(std::make_shared<const MessageSet>(), {});
    scene().model().mail().scanFlow.scan();
}

} // namespace corvane::testing
