#include "screens/settings/settings_travel.h"

#include "locations/place_names.h"
#include "locations/places/folder_listing.h"
#include "screens/settings/backup_file_choice.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

// Longer than any path that the system takes.
constexpr qsizetype pathLimit = 5000;

} // namespace

SettingsTravel::SettingsTravel(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent)
  : QObject(parent)
  , model_(model)
  , desktop_(desktop)
  , flow_(model.library().configBackup)
  , exportPicker_(model, &backupExportChoice)
  , importPicker_(model, &backupImportChoice) {
    connect(&flow_, &ConfigBackupFlow::changed, this, &SettingsTravel::changed);
    connect(&exportPicker_, &FolderPicker::chosen, this,
            [this] { exportToPath(exportPicker_.chosenPath()); });
    connect(&importPicker_, &FolderPicker::chosen, this,
            [this] { importFromPath(importPicker_.chosenPath()); });
    // The offer says that the archives' mail is there: they are read first.
    connect(&model.library().loader, &LibraryLoader::loadFinished, &flow_,
            &ConfigBackupFlow::offerConfigBackupOnFreshLaunch,
            // NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange): a flag joined to a kind
            static_cast<Qt::ConnectionType>(Qt::AutoConnection | Qt::SingleShotConnection));
    // Who chooses a place goes on without the offer.
    connect(&model.archiving().destinations, &ArchiveDestinations::destinationChanged, this, [this] {
        if (step() == Step::Offer) flow_.dismiss();
    });
}

QString SettingsTravel::exportName() {
    return screens::wholeText(configBackupExportName);
}

const CorvaneConfigBackup* SettingsTravel::pending() const {
    if (flow_.pendingImport()) return &*flow_.pendingImport();
    return flow_.pendingRestore() ? &*flow_.pendingRestore() : nullptr;
}

SettingsTravel::Step SettingsTravel::step() const {
    if (flow_.pendingImport()) return Step::Question;
    if (flow_.resultMessage()) return Step::Result;
    return flow_.pendingRestore() ? Step::Offer : Step::Closed;
}

QVariantList SettingsTravel::summary() const {
    QVariantList lines;
    const CorvaneConfigBackup* backup = pending();
    if (backup == nullptr) return lines;
    const QString home = screens::wholeText(model_.context().platform.realUserHomeDirectory());
    // A backup comes from anybody: its texts are cut like those of mail.
    for (const QString& text :
         screens::shownText(configBackupSummary(*backup), pathLimit).split(QLatin1Char('\n'))) {
        const qsizetype mark = text.indexOf(QStringLiteral("："));
        if (mark < 0) continue;
        lines.append(QVariantMap{{QStringLiteral("label"), text.left(mark + 1)},
                                 {QStringLiteral("value"), screens::shownPath(text.mid(mark + 1), home)}});
    }
    return lines;
}

QString SettingsTravel::note() const {
    if (step() != Step::Offer) return {};
    const std::string name = locationDisplayName(model_.context().platform, flow_.restoreRoot());
    return QStringLiteral("在「%1」里找到").arg(screens::shownLine(name));
}

QString SettingsTravel::result() const {
    return screens::shownText(flow_.resultMessage().value_or(""), pathLimit);
}

void SettingsTravel::exportTo(const QUrl& file) {
    if (file.isLocalFile()) exportToPath(file.toLocalFile().toStdString());
}

void SettingsTravel::importFrom(const QUrl& file) {
    if (file.isLocalFile()) importFromPath(file.toLocalFile().toStdString());
}

bool SettingsTravel::importTyped(const QString& path) {
    if (!isBackupName(path.toStdString())) return false;
    importFromPath(typedFolder(path.toStdString(), importPicker_.pathText().toStdString(),
                               model_.context().platform.realUserHomeDirectory()));
    return true;
}

void SettingsTravel::exportToPath(const std::string& path) {
    isExporting_ = true;
    exportedPath_ = path;
    flow_.exportConfig(path);
}

void SettingsTravel::importFromPath(const std::string& path) {
    isExporting_ = false;
    flow_.importConfig(path);
}

void SettingsTravel::accept() {
    const CorvaneConfigBackup* backup = pending();
    isExporting_ = false;
    if (backup != nullptr) model_.applyConfigBackup(*backup);
}

void SettingsTravel::close() {
    if (step() == Step::Result)
        flow_.dismissResult();
    else
        flow_.dismiss();
}

void SettingsTravel::showExported() {
    desktop_.reveal(screens::wholeText(exportedPath_));
    close();
}

} // namespace corvane
