#include "screens/shell/archive_place.h"

#include "platform/paths.h"
#include "records/formatters.h"
#include "screens/texts/destination_texts.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

DestinationView viewOf(CorvaneViewModel& model) {
    return {model.destinations().transferDestination(), model.destinations().facts(),
            model.context().platform};
}

} // namespace

ArchivePlace::ArchivePlace(CorvaneViewModel& model, QObject* parent)
  : QObject(parent)
  , model_(model) {
    connect(&model.destinations(), &ArchiveDestinations::destinationChanged, this, &ArchivePlace::changed);
    connect(&model.destinations(), &ArchiveDestinations::factsChanged, this, &ArchivePlace::changed);
}

QString ArchivePlace::symbol() const {
    return screens::destinationSymbol(viewOf(model_));
}

QString ArchivePlace::name() const {
    const DestinationFacts& facts = model_.destinations().facts();
    if (!path().isEmpty() && facts.cloudName) return screens::wholeText(*facts.cloudName);
    return screens::destinationName(viewOf(model_));
}

QString ArchivePlace::line() const {
    const DestinationView view = viewOf(model_);
    if (!view.path) return QStringLiteral("云盘 / U 盘 / 外置硬盘");
    if (missing()) return QStringLiteral("未连接");
    const QString folder = screens::wholeText(platform::lastPathComponent(*view.path));
    if (view.facts.cloudName) return folder + QStringLiteral(" · 已连接");
    QString kind = view.isOnRemovableDisk() ? QStringLiteral("U 盘 / 外置盘") : QStringLiteral("本机");
    if (!view.facts.availableBytes) return kind;
    return kind + QStringLiteral(" · 可用 ") +
           QString::fromStdString(formatByteCount(*view.facts.availableBytes));
}

QString ArchivePlace::path() const {
    return QString::fromStdString(model_.destinations().transferDestination().value_or(std::string()));
}

bool ArchivePlace::missing() const {
    return model_.destinations().transferDestination() && !model_.destinations().facts().connected;
}

} // namespace corvane
