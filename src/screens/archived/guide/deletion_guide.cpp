#include "screens/archived/guide/deletion_guide.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <tuple>
#include <utility>

#include <QUrl>
#include <QVariantMap>

#include "screens/archived/figures/overview_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using screens::wholeText;
using Years = std::vector<std::int64_t>;

QString spanText(const SmartMailboxGuideTarget& target) {
    return screens::yearSpans(target.years) + QStringLiteral(" 年");
}

} // namespace

DeletionGuide::DeletionGuide(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent)
  : QObject(parent)
  , model_(model)
  , desktop_(desktop)
  , proof_(model) {}

void DeletionGuide::open(const std::string& key, bool asksMail) {
    key_ = key;
    isOpen_ = true;
    current_ = 0;
    wantedYears_.clear();
    find();
    for (std::size_t number = 0; group_ != nullptr && number < group_->years.size(); ++number) {
        const ArchivedOverviewStats::Year& year = stats_->years[number];
        if (year.isCleanable || year.awaitsProof) wantedYears_.push_back(group_->years[number].year);
    }
    if (asksMail) model_.library().presence.refreshArchivedOriginalPresenceIfNeeded(true);
    // An account may have come, or have another name, since the window was opened.
    model_.mail().counts.refreshIfOld(model_.mail().catalog.messages());
    setProofScope();
    findTargets();
    Q_EMIT changed();
    proof_.start();
}

void DeletionGuide::close() {
    isOpen_ = false;
    Q_EMIT changed();
}

void DeletionGuide::show(SharedOverview overview, OriginalKnowledge knowledge) {
    overview_ = std::move(overview);
    knowledge_ = knowledge;
    find();
    findTargets();
    if (isOpen_) Q_EMIT changed();
}

void DeletionGuide::handleProofProgress() {
    if (!isOpen_) return;
    Q_EMIT proof_.changed();
    Q_EMIT changed();
}

void DeletionGuide::setProofScope() {
    ProofScope scope;
    if (group_ != nullptr) scope.accountPrefixes = {group_->mailAccounts.begin(), group_->mailAccounts.end()};
    scope.years = {wantedYears_.begin(), wantedYears_.end()};
    proof_.setScope(std::move(scope));
}

void DeletionGuide::find() {
    std::tie(group_, stats_) = screens::groupOfKey(overview_, key_);
}

void DeletionGuide::findTargets() {
    targets_.clear();
    addTargets();
    proof_.show(knowledge_, targets_.empty() ? std::nullopt : std::optional(stats_->freeable.count));
}

void DeletionGuide::addTargets() {
    if (!isOpen_ || group_ == nullptr || knowledge_ != OriginalKnowledge::known) return;
    Years years;
    for (const std::int64_t year : overviewCleanableYears(*group_, *stats_)) {
        if (std::ranges::find(wantedYears_, year) != wantedYears_.end()) years.push_back(year);
    }
    targets_ = smartMailboxGuideTargets(stats_->mailNames, years);
    current_ = std::clamp(current_, 0, std::max(0, static_cast<int>(targets_.size()) - 1));
}

QStringList DeletionGuide::spans() const {
    QStringList texts;
    const bool hasOneAccount = std::ranges::all_of(targets_, [&](const SmartMailboxGuideTarget& each) {
        return each.accountName == targets_.front().accountName;
    });
    for (const SmartMailboxGuideTarget& each : targets_)
        texts +=
            hasOneAccount ? spanText(each) : screens::shownLine(each.accountName, 24) + u' ' + spanText(each);
    return texts;
}

void DeletionGuide::setCurrent(int current) {
    if (current_ == current || current < 0 || current >= static_cast<int>(targets_.size())) return;
    current_ = current;
    Q_EMIT changed();
}

const SmartMailboxGuideTarget* DeletionGuide::target() const {
    return isReady() ? &targets_[static_cast<std::size_t>(current_)] : nullptr;
}

QString DeletionGuide::condition() const {
    return target() != nullptr ? wholeText(conditionText(*target())) : QString();
}

QString DeletionGuide::name() const {
    return target() != nullptr ? wholeText(suggestedName(*target())) : QString();
}

QVariantList DeletionGuide::steps() const {
    QVariantList steps;
    const bool isGiven = target() != nullptr;
    for (const SmartMailboxGuideStep& step :
         smartMailboxGuideSteps(isGiven ? *target() : SmartMailboxGuideTarget())) {
        QStringList lines;
        for (const std::string& line : step.lines) {
            if (isGiven) lines += wholeText(line);
        }
        // A step without a title is its text.
        QString title = wholeText(step.title.empty() ? step.lines.front() : step.title);
        if (step.title.empty()) lines.clear();
        steps += QVariantMap{{QStringLiteral("title"), title}, {QStringLiteral("lines"), lines}};
    }
    return steps;
}

QString DeletionGuide::leftOut() const {
    if (!isOpen_ || group_ == nullptr || proof_.isComparing()) return {};
    std::vector<std::pair<QString, Years>> byReason; // in the order of the years
    for (std::size_t number = 0; number < group_->years.size(); ++number) {
        const bool isWanted =
            std::ranges::find(wantedYears_, group_->years[number].year) != wantedYears_.end();
        if (!isWanted || stats_->years[number].isOffered()) continue;
        const QString reason = wholeText(leftOutReason(stats_->years[number]));
        auto known = std::ranges::find(byReason, reason, &std::pair<QString, Years>::first);
        if (known == byReason.end()) known = byReason.insert(known, {reason, {}});
        known->second.push_back(group_->years[number].year);
    }
    QStringList parts;
    for (const auto& [reason, years] : byReason)
        parts += screens::yearSpans(years) + QStringLiteral(" 年没有列入：") + reason;
    return parts.isEmpty() ? QString() : parts.join(u'；') + u'。';
}

void DeletionGuide::copyCondition() {
    if (target() != nullptr) desktop_.copy(condition());
}

void DeletionGuide::copyName() {
    if (target() != nullptr) desktop_.copy(name());
}

void DeletionGuide::openMail() {
    if (!desktop_.open(QUrl(QStringLiteral("message:"))))
        Q_EMIT failed(QStringLiteral("没有找到 Apple Mail，请在有 Apple Mail 的 Mac 上继续。"));
}

} // namespace corvane
