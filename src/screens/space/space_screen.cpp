#include "screens/space/space_screen.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include <QVariantMap>

#include "listing/space_usage.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using screens::shownCount;
using screens::shownMessageCount;
using screens::shownSize;

QVariantMap part(int number, const QString& label, std::int64_t bytes) {
    return {{QStringLiteral("series"), QStringLiteral("share%1").arg(number)},
            {QStringLiteral("label"), label},
            {QStringLiteral("value"), static_cast<double>(bytes)},
            {QStringLiteral("text"), shownSize(bytes)}};
}

constexpr int lastSeries = 4;

QString tickedTitle(const SpaceSenderTicks::Sum& sum) {
    return sum.senders == 0 ? QStringLiteral("尚未勾选")
                            : QStringLiteral("已选 %1 个发件人").arg(shownCount(sum.senders));
}

QString tickedLine(const SpaceSenderTicks::Sum& sum) {
    return sum.senders == 0 ? QStringLiteral("勾选发件人，把他们的邮件放进归档库。")
                            : shownMessageCount(sum.messages) + QStringLiteral(" · ") + shownSize(sum.bytes);
}

int tickState(const SpaceSenderTicks::Sum& sum, std::size_t senders) {
    if (sum.senders == 0) return 0;
    return static_cast<std::size_t>(sum.senders) == senders ? 1 : 2;
}

} // namespace

SpaceScreen::SpaceScreen(CorvaneViewModel& model, ArchiveScreen& archive, DesktopActions& desktop,
                         QObject* parent)
  : QObject(parent)
  , model_(model)
  , archive_(archive)
  , desktop_(desktop) {
    const auto updates = [this](auto* sender, auto signal) {
        connect(sender, signal, this, &SpaceScreen::update);
    };
    updates(&model.mail().space, &SpaceUsageFlow::spaceUsageChanged);
    updates(&model.mail().counts, &IndexCounts::countsChanged);
    updates(&model.mail().scanFlow, &ScanFlow::stateChanged);
    updates(&model.mail().catalog, &MessageCatalog::availabilityPublished);
    updates(&model.mail().catalog, &MessageCatalog::generationReplaced);
    updates(&model.mail().diskAccess, &FullDiskAccess::needsFullDiskAccessChanged);
    updates(&archive, &ArchiveScreen::stageChanged);
    connect(&model.mail().catalog, &MessageCatalog::availabilityPublished, this, [this] {
        if (model_.mail().catalog.isAvailabilityKnown() && !model_.mail().scanFlow.state().isScanning())
            open();
    });
}

void SpaceScreen::open() {
    if (std::exchange(isOpened_, true)) return;
    model_.mail().space.refreshSpaceUsage();
    update();
}

void SpaceScreen::update() {
    if (!isOpened_) return;
    const auto& usage = *model_.mail().space.spaceUsage();
    // Beside the accounts the largest one, as that is what one came for.
    if (account() == nullptr && !wasClosed_)
        chosenKey_ = usage.empty() ? std::string() : usage.front().accountPrefix;
    for (const SpaceAccountUsage& each : usage) {
        const auto ticks = ticks_.find(each.accountPrefix);
        if (ticks != ticks_.end()) ticks->second.prune(each);
    }
    accounts_.show(usage, model_.mail().counts, chosenKey_);
    showSenders();
}

void SpaceScreen::showSenders() {
    if (const SpaceAccountUsage* shown = account()) {
        senders_.show(*shown, ticks());
    } else {
        senders_.clear();
    }
    Q_EMIT changed();
}

SpaceScreen::State SpaceScreen::state() const {
    if (model_.mail().diskAccess.needsFullDiskAccess()) return NoAccess;
    const ScanFlow& scan = model_.mail().scanFlow;
    if (scan.state().isScanning()) return Scanning;
    if (model_.mail().catalog.state()->isPartial()) return Partial;
    if (model_.mail().catalog.messages()->empty()) return scan.isLastScanAwaited() ? Loading : NoMail;
    return model_.mail().space.spaceUsage()->empty() || !model_.mail().catalog.isAvailabilityKnown() ? Loading
                                                                                                     : Listed;
}

const SpaceAccountUsage* SpaceScreen::account() const {
    const auto& usage = *model_.mail().space.spaceUsage();
    const auto found = std::ranges::find(usage, chosenKey_, &SpaceAccountUsage::accountPrefix);
    return found == usage.end() ? nullptr : &*found;
}

const SpaceSenderTicks& SpaceScreen::ticks() const {
    static const SpaceSenderTicks none;
    const auto found = ticks_.find(chosenKey_);
    return found == ticks_.end() ? none : found->second;
}

QString SpaceScreen::totalSize() const {
    return state() == Listed ? shownSize(model_.mail().space.spaceUsageLocalTotalBytes()) : QString();
}

QString SpaceScreen::sidebarFigure() const {
    return state() == Loading ? QStringLiteral("—") : totalSize();
}

QString SpaceScreen::totalCount() const {
    std::int64_t count = 0;
    for (const SpaceAccountUsage& each : *model_.mail().space.spaceUsage()) count += each.localCount;
    return state() == Listed ? shownMessageCount(count) : QString();
}

QVariantList SpaceScreen::shares() const {
    QVariantList parts;
    std::int64_t rest = 0;
    std::int64_t restCount = 0;
    QString restLabel;
    int number = 0;
    for (const SpaceAccountUsage& each : *model_.mail().space.spaceUsage()) {
        if (++number < lastSeries) {
            parts += part(number, screens::shownLine(each.accountName), each.localBytes);
            continue;
        }
        rest += each.localBytes;
        restLabel = ++restCount == 1 ? screens::shownLine(each.accountName)
                                     : QStringLiteral("其它 %1 个邮箱").arg(restCount);
    }
    if (restCount > 0) parts += part(lastSeries, restLabel, rest);
    return parts;
}

SpaceChosenAccount SpaceScreen::chosen() const {
    const SpaceAccountUsage* const shown = account();
    if (shown == nullptr) return {};
    const SpaceSenderTicks::Sum sum = ticks().sumIn(*shown);
    return {.isThere = true,
            .title = screens::shownLine(shown->accountName),
            .countLine = screens::wholeText(spaceDetailCountLine(*shown)),
            .tickedTitle = tickedTitle(sum),
            .tickedLine = tickedLine(sum),
            .tickState = tickState(sum, shown->topSenders.size())};
}

QString SpaceScreen::note() const {
    return screens::wholeText(spaceDetailNote);
}

bool SpaceScreen::canBackUp() const {
    if (archive_.isRunning()) return true;
    return state() == Listed && chosen().tickState != 0;
}

QString SpaceScreen::backUpTitle() const {
    return archive_.isRunning() ? QStringLiteral("查看归档进度") : QStringLiteral("备份这些邮件");
}

void SpaceScreen::openAccount(int row) {
    const SpaceAccount* const chosen = accounts_.record(row);
    if (chosen == nullptr) return;
    chosenKey_ = chosen->key;
    wasClosed_ = false;
    senders_.selection()->select(0);
    update();
}

void SpaceScreen::closeAccount() {
    wasClosed_ = true;
    chosenKey_.clear();
    update();
}

void SpaceScreen::setTick(int row, bool ticked) {
    const SpaceSender* const sender = senders_.record(row);
    if (sender != nullptr && sender->isTicked != ticked) ticks_[chosenKey_].toggle(sender->key);
}

void SpaceScreen::toggleTick(int row) {
    const SpaceSender* const sender = senders_.record(row);
    if (sender == nullptr) return;
    setTick(row, !sender->isTicked);
    showSenders();
}

void SpaceScreen::toggleTicks(int row) {
    if (!senders_.selection()->isSelected(row)) return toggleTick(row);
    const bool ticked = !senders_.record(row)->isTicked;
    senders_.selection()->rows().forEach([&](int each) { setTick(each, ticked); });
    showSenders();
}

void SpaceScreen::setAllTicks(bool ticked) {
    for (int row = 0; row < senders_.count(); ++row) setTick(row, ticked);
    showSenders();
}

void SpaceScreen::backUp() {
    if (archive_.isRunning()) return archive_.background()->bringToFront();
    if (!canBackUp()) return;
    archive_.open(ArchiveRequest{
        [messages = model_.mail().catalog.messages(), local = model_.mail().catalog.locallyAvailableIDs(),
         key = chosenKey_,
         senders = ticks().selected()] { return localMessageIDs(*messages, *local, key, senders); },
        {}});
}

void SpaceScreen::copySenders() {
    const QString lines = senders_.selectedLines();
    if (!lines.isEmpty()) desktop_.copy(lines);
}

} // namespace corvane
