// The home and the archive sheet over a real model, a real archive folder and messages with their files.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include <QSignalSpy>

#include "model/model_test.h"
#include "model/published_messages.h"
#include "records/stores/account_cache_store.h"
#include "screens/archive/archive_screen.h"
#include "screens/home/home_screen.h"
#include "screens/overview/organize_data.h"
#include "screens/support/recording_desktop.h"

namespace corvane::testing {

class ScreensTest : public ModelTest {
  protected:
    ScreensTest() {
        model_.mail().scanFlow.loadCachedScanIfNeeded(false); // as every start does
        model_.mail().counts.setIndexed({});                  // an index without more than what is here
        settle();
    }

    // All work has ended, and what was due to be shown is shown.
    void settle() {
        waitUntilIdle(context_.tasks);
        QCoreApplication::processEvents();
        if (data_.isUpToDate()) return;
        QEventLoop loop;
        QObject::connect(&data_, &OrganizeData::overviewChanged, &loop, &QEventLoop::quit);
        QTimer::singleShot(std::chrono::seconds(10), &loop, &QEventLoop::quit);
        loop.exec();
        waitUntilIdle(context_.tasks);
    }

    void publish(const std::vector<MessageSketch>& sketches) {
        publishMessages(model_.mail().catalog, sampleMessages(home_, sketches));
        settle();
    }

    void chooseDestination(const std::string& folder) {
        archiveScreen_.place()->quickDestinations()->chooseFolder(
            QUrl::fromLocalFile(QString::fromStdString(folder)));
        settle();
    }

    [[nodiscard]] int rowOf(const char* title) {
        auto& tree = *homeScreen_.tree();
        for (int row = 0; row < tree.rowCount(); ++row) {
            if (tree.data(tree.index(row), OrganizeTreeModel::TitleRole).toString() ==
                QString::fromUtf8(title))
                return row;
        }
        return -1;
    }

    // What a start finds in the cache of accounts, so that it doesn't ask Mail for them.
    static ModelContext& withKnownAccount(ModelContext& context) {
        MailAccount account;
        account.urlPrefix = "imap://A";
        account.emailAddress = "a@example.org";
        account.scheme = "imap";
        MailAccountCacheStore(context.support).save(context.mailRootPath, {account});
        return context;
    }

    ModelContext context_{platform_};
    CorvaneViewModel model_{withKnownAccount(context_)};
    RecordingDesktop desktop_;
    OrganizeData data_{model_, std::chrono::milliseconds(0)};
    ArchiveScreen archiveScreen_{model_, data_, desktop_};
    HomeScreen homeScreen_{model_, data_, archiveScreen_, desktop_};
};

} // namespace corvane::testing
