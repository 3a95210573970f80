// Frames of the mail list while it is scrolled, and steps of the main thread while somebody types in its
// search, in a window without a screen that is painted in software. Prints one JSON object; all times are
// milliseconds of the main thread's processor.
//
//   measure_mail_list ours|floor ROWS
//
// The floor scrolls a bare list of as many rows that hold the same six texts and nothing else.
#include <functional>
#include <vector>

#include <QEventLoop>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <fmt/format.h>

#include "main_thread_times.h"
#include "model/corvane_view_model.h"
#include "platform/platform.h"
#include "screens/controls/theme/appearance.h"
#include "screens/controls/theme/fonts.h"
#include "screens/shell/window_model.h"

namespace {

using namespace corvane;

constexpr int width = 1024;
constexpr int height = 840;
constexpr int frames = 500;
constexpr qreal rowHeight = 76;

SharedMessageList makeMessages(int count) {
    const char* senders[] = {"周明哲 <zhou@a.example>", "财务部 <cw@a.example>", "Li, Ming <li@b.example>",
                             "区行政服务中心 <fw@c.example>"};
    const char* subjects[] = {"Re: 关于江湾小学改造二期施工图的回复与补充说明，请今天内确认", "发票与报销单",
                              "Quarterly report, second draft with remarks", "会议纪要：图书角方案讨论"};
    auto list = std::make_shared<MessageList>();
    list->reserve(static_cast<std::size_t>(count));
    const SharedText mailbox("收件箱");
    const SharedText account("imap://A");
    for (int number = 0; number < count; ++number) {
        MailMessageRecord message;
        message.id = fmt::format("/home/u/Library/Mail/V10/A/收件箱.mbox/Data/{}/Messages/{}.emlx",
                                 number / 1000, number);
        message.fileURL = FileURL(message.id);
        message.sender = senders[number % 4];
        message.subject = fmt::format("{} {}", subjects[number / 3 % 4], number);
        message.recipients = "林志远；陈思远；刘晓彤";
        message.preview =
            fmt::format("第 {} 封：今天下午监理来看过，一共提了六条，照片按房间编号放在压缩包里。", number);
        message.date = Date(std::chrono::seconds(1'700'000'000 - number * 600LL));
        message.mailbox = mailbox;
        message.accountIdentifier = account;
        message.messageSize = 1'000 + number % 5'000'000;
        if (number % 3 == 0) message.attachments.resize(static_cast<std::size_t>(number % 5 + 1));
        list->push_back(std::move(message));
    }
    return list;
}

// All of them are known to be on this machine: no file is looked for.
AvailabilityResult allAvailable(const MessageList& messages) {
    AvailabilityResult known;
    auto ids = std::make_shared<SharedTextSet>();
    ids->reserve(messages.size());
    for (const MailMessageRecord& message : messages) ids->insert(message.id);
    known.locallyAvailableIDs = std::move(ids);
    known.yearByID = std::make_shared<const YearByID>(computeMessageYears(messages));
    return known;
}

class Window {
  public:
    Window(QQmlEngine& engine, const QByteArray& qml, const QVariantMap& properties) {
        QQmlComponent component(&engine);
        component.setData(qml, QUrl(QStringLiteral("qrc:/measure.qml")));
        page_.reset(qobject_cast<QQuickItem*>(component.createWithInitialProperties(properties)));
        if (!page_) qFatal("%s", qPrintable(component.errorString()));
        page_->setParentItem(window_.contentItem());
        page_->setSize(QSizeF(width, height));
        window_.resize(width, height);
        window_.show();
        QObject::connect(&window_, &QQuickWindow::frameSwapped, &window_, [this] { ++swapped_; });
    }

    // The processor's time from a change to its painted frame.
    double frame(const std::function<void()>& change) {
        const int before = swapped_;
        const double start = threadMilliseconds();
        change();
        while (swapped_ == before) {
            window_.update();
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return threadMilliseconds() - start;
    }

    [[nodiscard]] QQuickItem* find(const char* name) const {
        const QString wanted = QString::fromLatin1(name);
        return page_->objectName() == wanted ? page_.get() : page_->findChild<QQuickItem*>(wanted);
    }

  private:
    QQuickWindow window_;
    std::unique_ptr<QQuickItem> page_;
    int swapped_ = 0;
};

std::string scrolled(Window& window, QQuickItem& view, int rows) {
    const qreal end = rows * rowHeight - view.height();
    const auto run = [&](qreal step) {
        std::vector<double> times;
        qreal place = 0;
        for (int number = 0; number < frames; ++number) {
            place = place + step > end ? 0 : place + step;
            times.push_back(window.frame(
                [&] { view.setProperty("contentY", view.property("originY").toReal() + place); }));
        }
        return summaryOf(std::move(times));
    };
    run(40); // what is made once is made
    const std::string wheel = run(40);
    const std::string pages = run(700);
    const std::string jumps = run(end / 7.3);
    return fmt::format(R"("wheel": {}, "pages": {}, "jumps": {})", wheel, pages, jumps);
}

// Each pass of the event loop from a key to its list.
std::string typed(Window& window, CorvaneViewModel& model, MailListScreen& screen) {
    std::vector<double> steps;
    for (const char* query :
         {"会", "会议", "会议纪", "会议纪要", "会议纪", "", "r", "re", "report", "无此邮件", ""}) {
        bool arrived = false;
        const auto listed =
            QObject::connect(screen.list(), &MessageListModel::changed, [&] { arrived = true; });
        screen.filters()->setQuery(QString::fromUtf8(query));
        screen.filters()->applyQuery();
        while (!arrived || !model.context().tasks.isIdle()) {
            const double start = threadMilliseconds();
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            steps.push_back(threadMilliseconds() - start);
        }
        QObject::disconnect(listed);
        steps.push_back(window.frame([] {}));
    }
    return summaryOf(std::move(steps));
}

std::string measureOurs(int rows) {
    const QTemporaryDir home;
    const auto system = platform::makePlatform(home.path().toStdString());
    ModelContext context(*system);
    CorvaneViewModel model(context);
    WindowModel windowModel(model);
    const SharedMessageList messages = makeMessages(rows);
    model.mail().catalog.restore(MessageSet::make(messages, false), {}, allAvailable(*messages));
    while (!context.tasks.isIdle() || windowModel.mails()->list()->count() < rows) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QQmlEngine engine;
    engine.addImportPath(QStringLiteral(":/qt/qml"));
    Window window(engine, "import Corvane\nMailListPage {}",
                  {{QStringLiteral("app"), QVariant::fromValue(&windowModel)}});
    window.frame([] {});
    const std::string scrolling = scrolled(window, *window.find("messageView"), rows);
    return fmt::format(R"({}, "typing": {})", scrolling, typed(window, model, *windowModel.mails()));
}

std::string measureFloor(int rows) {
    QQmlEngine engine;
    Window window(engine, R"(
import QtQuick
ListView {
    objectName: "messageView"
    property int rows
    model: rows
    reuseItems: true
    delegate: Item {
        required property int index
        width: 371
        height: 76
        Text { x: 38; y: 8; text: "周明哲"; font.pixelSize: 13; font.weight: 600; textFormat: Text.PlainText }
        Text { x: 250; y: 8; text: "2021-06-09 17:42"; font.pixelSize: 12; textFormat: Text.PlainText }
        Text { x: 38; y: 28; width: 280; elide: Text.ElideRight; text: "关于江湾小学改造二期施工图的回复与补充说明 " + parent.index; font.pixelSize: 13; textFormat: Text.PlainText }
        Text { x: 330; y: 28; text: "4"; font.pixelSize: 12; textFormat: Text.PlainText }
        Text { x: 38; y: 48; width: 280; elide: Text.ElideRight; text: "第 " + parent.index + " 封：今天下午监理来看过，一共提了六条，照片按房间编号"; font.pixelSize: 13; textFormat: Text.PlainText }
        Text { x: 320; y: 48; text: "18.6 MB"; font.pixelSize: 12; textFormat: Text.PlainText }
    }
})",
                  {{QStringLiteral("rows"), rows}});
    window.frame([] {});
    return scrolled(window, *window.find("messageView"), rows);
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    const QGuiApplication application(argc, argv);
    useWindowFonts();
    const Appearance appearance(Appearance::Scheme::light);
    const QStringList arguments = QCoreApplication::arguments();
    const int rows = arguments.value(2).toInt();
    if (rows < 1) {
        fmt::print(stderr, "measure_mail_list ours|floor ROWS\n");
        return 2;
    }
    const bool isFloor = arguments[1] == QLatin1String("floor");
    fmt::print("{{\"rows\": {}, {}}}\n", rows, isFloor ? measureFloor(rows) : measureOurs(rows));
    return 0;
}
