#include <chrono>
#include <future>

#include <QCoreApplication>
#include <QFileOpenEvent>
#include <QLocalSocket>
#include <QSignalSpy>
#include <gtest/gtest.h>

#include "app/open_requests.h"
#include "app/single_instance.h"
#include "screens/shell/start/corvane_url.h"
#include "support/temporary_home.h"

namespace corvane {

namespace {

QString folderOf(const testing::TemporaryHome& home) {
    return QString::fromStdString(home.path());
}

TEST(SingleInstance, SecondStartHandsItsAddressToTheFirst) {
    const testing::TemporaryHome home;
    SingleInstance first(folderOf(home));
    ASSERT_TRUE(first.tryBecomeFirst());
    QSignalSpy requests(&first, &SingleInstance::requested);
    for (const char* address : {"", "corvane://open?path=/a%20b"}) {
        // The second start waits for its answer, so it is on a thread of its own.
        auto second = std::async(std::launch::async, [&] {
            SingleInstance other(folderOf(home));
            return !other.tryBecomeFirst() && other.sendToFirst(QString::fromUtf8(address));
        });
        ASSERT_TRUE(requests.wait(10'000));
        while (second.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
            QCoreApplication::processEvents();
        EXPECT_TRUE(second.get());
        EXPECT_EQ(requests.takeFirst().first().toString(), QString::fromUtf8(address));
    }
}

TEST(SingleInstance, HomesDontMeet_AndTheNextOneIsFirstAgain) {
    const testing::TemporaryHome home;
    const testing::TemporaryHome other;
    {
        SingleInstance first(folderOf(home));
        SingleInstance elsewhere(folderOf(other));
        EXPECT_TRUE(first.tryBecomeFirst());
        EXPECT_TRUE(elsewhere.tryBecomeFirst());
    }
    SingleInstance next(folderOf(home));
    EXPECT_TRUE(next.tryBecomeFirst());
}

TEST(SingleInstance, SilentFirstOneIsSaidToBeSo) {
    const testing::TemporaryHome home;
    SingleInstance first(folderOf(home));
    ASSERT_TRUE(first.tryBecomeFirst());
    SingleInstance second(folderOf(home));
    EXPECT_FALSE(second.tryBecomeFirst());
    // Nobody runs the first one's event loop while this waits.
    EXPECT_FALSE(second.sendToFirst(QString()));
    EXPECT_TRUE(second.obstacle().contains(QString::number(QCoreApplication::applicationPid())));
}

TEST(SingleInstance, DataFolderThatCannotBeMadeIsntAnotherWindow_AndIsMadeOnceItCan) {
    const testing::TemporaryHome home;
    const std::string inTheWay = home.write("place", "a file");
    const QString folder = QString::fromStdString(inTheWay) + QStringLiteral("/Corvane");
    SingleInstance start(folder);
    EXPECT_FALSE(start.tryBecomeFirst());
    EXPECT_FALSE(start.obstacle().contains(QStringLiteral("已经在运行")));
    EXPECT_TRUE(start.obstacle().contains(folder));
    ASSERT_TRUE(QFile::remove(QString::fromStdString(inTheWay)));
    EXPECT_TRUE(start.tryBecomeFirst());
}

TEST(OpenRequests, WhatTheDesktopOpensIsAnAddress) {
    OpenRequests requests;
    QSignalSpy requested(&requests, &OpenRequests::requested);
    for (const QUrl& url : {QUrl(QStringLiteral("corvane://open?path=/a%20b")),
                            QUrl::fromLocalFile(QStringLiteral("/归档 1&2"))}) {
        QFileOpenEvent event(url);
        QCoreApplication::sendEvent(qApp, &event);
        const QUrl address(requested.takeFirst().front().toString());
        EXPECT_EQ(address.scheme(), QStringLiteral("corvane"));
        EXPECT_EQ(folderOfUrl(address.toString(QUrl::FullyEncoded)),
                  url.isLocalFile() ? QStringLiteral("/归档 1&2") : QStringLiteral("/a b"));
    }
}

} // namespace

} // namespace corvane
