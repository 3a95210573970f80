#include "cli/overview_loading.h"

#include <algorithm>

#include <fmt/format.h>

#include "cli/proving.h"
#include "model/library/overview/overview_state.h"
#include "records/logs/console_log.h"

namespace corvane::cli {

namespace {

void loadMailAndLibrary(Session& session) {
    CorvaneViewModel& model = session.model();
    bool isLoaded = false;
    const auto loading =
        QObject::connect(&model.library().loader, &LibraryLoader::loadFinished, [&] { isLoaded = true; });
    session.restoreLastScan();
    QObject::disconnect(loading);
    // Where there is no scan, nothing has loaded the archives.
    if (!isLoaded) loadLibrary(session);
    model.library().index.rebuildLibraryIndexIfNeeded();
    session.waitUntilIdle();
}

void compareWithMail(Session& session) {
    PresenceFlow& presence = session.model().library().presence;
    presence.refreshArchivedOriginalPresenceIfNeeded(true);
    session.waitUntilIdle();
    if (const auto& failure = presence.questionFailure()) messageLine(*failure);
    proveToEnd(session, {});
}

} // namespace

SharedOverview loadOverview(Session& session, OriginalsCheck check) {
    loadMailAndLibrary(session);
    CorvaneViewModel& model = session.model();
    model.library().presence.refreshArchivedOriginalPresenceIfNeeded(false);
    session.waitUntilIdle();
    if (check == OriginalsCheck::compare) compareWithMail(session);
    model.library().overview.refreshArchivedOverviewStats();
    session.waitUntilIdle([] {});
    SharedOverview overview = model.library().overview.overview();
    if (overview->inputs.indexHasFailed) messageLine(mailIndexFailure);
    return overview;
}

std::size_t overviewGroup(const ArchivedOverview& overview, std::string_view key) {
    const auto& groups = *overview.groups;
    auto group = std::ranges::find(groups, key, &ArchivedOverviewGroup::key);
    // By the name that a person reads, where no other group has it.
    if (group == groups.end() && std::ranges::count(groups, key, &ArchivedOverviewGroup::title) == 1)
        group = std::ranges::find(groups, key, &ArchivedOverviewGroup::title);
    if (group == groups.end())
        throw CommandFailure(fmt::format("归档库中没有这个账户：{}（overview 列出有哪些）", key));
    return static_cast<std::size_t>(group - groups.begin());
}

} // namespace corvane::cli
