#include "screens/shell/window_model.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <tuple>
#include <utility>

#include <QGuiApplication>
#include <QUrl>
#include <fmt/format.h>

#include "model/mail/scan/sample_mail_maker.h"
#include "platform/files/directory.h"
#include "platform/files/file_package.h"
#include "screens/shell/start/corvane_url.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

// Nothing for none, and a dash as long as nobody knows.
QString sidebarCount(std::int64_t count, bool isAwaited) {
    if (count > 0) return screens::shownCount(count);
    return isAwaited ? QStringLiteral("—") : QString();
}

struct AddressJob {
    const platform::Platform* platform;
    std::string path;
};

// An address comes from anywhere, and what isn't a plain folder would be given to a program, or is one: it is
// only shown where it lies. Absent then, and where nothing is there.
std::optional<std::string> folderToOpen(const AddressJob& job, const TaskHandle&) {
    auto resolved = platform::resolvedPath(job.path);
    if (!resolved || platform::isPlainFolder(*resolved)) return resolved;
    std::ignore = job.platform->reveal(*resolved);
    return std::nullopt;
}

} // namespace

WindowModel::WindowModel(CorvaneViewModel& model, std::chrono::milliseconds figuresInterval, QObject* parent)
  : QObject(parent)
  , model_(model)
  , notices_(model.context())
  , lengths_(model.context().settings)
  , organizeData_(model, figuresInterval)
  , archive_(model, organizeData_, desktop_)
  , home_(model, organizeData_, archive_, desktop_)
  , activity_(model)
  , sampleStore_(model.context(), sampleMailMakers(model.context().platform))
  , otherMail_(model)
  , archived_(model, desktop_)
  , mails_(model, desktop_)
  , library_(model, desktop_)
  , space_(model, archive_, desktop_)
  , places_(model, desktop_)
  , settings_(model, desktop_)
  , collection_(model)
  , addressTask_(model.context().tasks) {
    connect(&home_, &HomeScreen::figuresChanged, this, &WindowModel::showFigures);
    connect(&home_, &HomeScreen::stateChanged, this, &WindowModel::showFigures);
    connect(&archived_, &ArchivedScreen::changed, this, &WindowModel::showFigures);
    connect(&space_, &SpaceScreen::changed, this, &WindowModel::showFigures);
    connect(&model.mail().catalog, &MessageCatalog::messagesChanged, this, &WindowModel::showFigures);
    connect(&model.mail().catalog, &MessageCatalog::summaryChanged, this, &WindowModel::showFigures);
    connect(&model.archiving().archiveRun, &ArchiveRunFlow::archiveRunStarted, this,
            &WindowModel::archivingChanged);
    connect(&model.archiving().archiveRun, &ArchiveRunFlow::archiveRunEnded, this, [this] {
        Q_EMIT archivingChanged();
        if (std::exchange(stopping_, false)) Q_EMIT stopped();
    });
    connect(&model.library().loader, &LibraryLoader::archivedEntriesChanged, this, &WindowModel::showFigures);
    connect(library_.filters(), &LibraryFilterMenus::collectionRequested, &collection_,
            &AddressCollection::open);
    connect(&archived_, &ArchivedScreen::collectionRequested, &collection_, &AddressCollection::open);
    connect(
        mails_.actions(), &MailListActions::archiveRequested, &archive_,
        [this](const std::shared_ptr<const SharedTextSet>& ids) { archive_.open(ArchiveRequest::of(ids)); });
    connect(&model.archiving().destinations, &ArchiveDestinations::destinationChanged, this,
            &WindowModel::destinationChanged);
    connect(&model.archiving().destinations, &ArchiveDestinations::factsChanged, this,
            &WindowModel::destinationChanged);
    // Not every system tells of a folder that was renamed or taken away; somebody who comes back may have
    // done so, or have verified an archive by the command line.
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive && startedUp_) model_.lookAtArchives();
    });
    // Who wants Mail's side anew wants a true answer to what may be deleted; a long proof is old at its end.
    connect(&model.mail().scanFlow, &ScanFlow::scanStarted, &model, &CorvaneViewModel::lookAtArchives);
    connect(&model.archiving().proof, &ProofFlow::proofEnded, &model, &CorvaneViewModel::lookAtArchives);
    showFigures();
    sidebar_.publish();
}

void WindowModel::startUp() {
    if (startedUp_) return;
    startedUp_ = true;
    model_.context().startupLog.mark(fmt::format("ContentView onAppear mode=organize entries={}",
                                                 model_.library().loader.archivedEntries()->size()));
    model_.library().loader.loadCachedArchiveLibraryIfNeeded();
    model_.mail().scanFlow.loadCachedScanIfNeeded(false);
    // The snapshot shows what was; what may be deleted rests on what is there now.
    model_.library().loader.loadEmailArchiveIndex(model_.archiving().destinations.transferDestination(),
                                                  false);
}

void WindowModel::refreshAllMailData() {
    if (!archiving() && !model_.mail().scanFlow.state().isScanning())
        model_.mail().scanFlow.refreshAllMailData();
}

void WindowModel::stopArchiving() {
    if (!archiving()) {
        Q_EMIT stopped();
        return;
    }
    stopping_ = true;
    model_.archiving().archiveRun.cancelEmailArchive();
}

void WindowModel::openAddress(const QString& address) {
    const std::optional<QString> folder = folderOfUrl(address);
    if (!folder) return;
    addressTask_.start(TaskPriority::userInitiated,
                       AddressJob{&model_.context().platform, folder->toStdString()}, &folderToOpen,
                       [this](const std::string& path) {
                           desktop_.open(QUrl::fromLocalFile(screens::wholeText(path) + u'/'));
                       });
}

void WindowModel::showFigures() {
    notices_.update();
    sidebar_.setFigure(SidebarPlace::home, home_.organizeSidebarSubtitle());
    sidebar_.setFigure(SidebarPlace::archived, archived_.sidebarFigure());
    sidebar_.setFigure(SidebarPlace::space, space_.sidebarFigure());
    const auto archived = std::ssize(*model_.library().loader.archivedEntries());
    sidebar_.setFigure(SidebarPlace::library, sidebarCount(archived, model_.library().loader.isLoading()));
    const std::int64_t listed = static_cast<std::int64_t>(model_.mail().catalog.messages()->size());
    // A part of the mail is no figure for the list, but for the scan that is at it.
    const bool isCut =
        model_.mail().catalog.state()->isPartial() && !model_.mail().scanFlow.state().isScanning();
    const std::int64_t shown = isCut        ? 0
                               : listed > 0 ? listed
                                            : model_.mail().catalog.summary().scannedMessages;
    sidebar_.setFigure(SidebarPlace::mails, sidebarCount(shown, model_.mail().scanFlow.isLastScanAwaited()));
}

} // namespace corvane
