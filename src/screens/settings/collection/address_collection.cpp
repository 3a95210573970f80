#include "screens/settings/collection/address_collection.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using screens::shownCount;

constexpr std::chrono::milliseconds countPause(300);
constexpr qsizetype nameLimit = 200;

const CollectionPreview::Mails* mailsOf(const std::vector<CollectionPreview::Mails>& list,
                                        std::string_view key) {
    const auto found = std::ranges::find(list, key, &CollectionPreview::Mails::key);
    return found == list.end() ? nullptr : &*found;
}

} // namespace

AddressCollection::AddressCollection(CorvaneViewModel& model, QObject* parent)
  : QObject(parent)
  , model_(model)
  , task_(model.context().tasks) {
    pause_.setSingleShot(true);
    pause_.setInterval(countPause);
    connect(&pause_, &QTimer::timeout, this, &AddressCollection::count);
}

void AddressCollection::open(const QString& accountKey) {
    const std::string key = accountKey.toStdString();
    const bool isGroup = key.starts_with(userGroupPrefix);
    formerName_ = isGroup ? key.substr(userGroupPrefix.size()) : std::string();
    const ArchiveAddressCollectionEdit edit =
        isGroup ? addressCollection(model_.library().accountRules.archiveAccountMergeRules(), formerName_)
                : ArchiveAddressCollectionEdit();
    name_ = screens::wholeText(formerName_);
    baseKeys_ = edit.baseKeys;
    texts_ = edit.addresses;
    if (!isGroup && !key.empty()) {
        baseKeys_ = {key};
        name_ = screens::wholeText(model_.library().index.index()->accountTitle(key).value_or(""));
    }
    isOpen_ = true;
    preview_.reset();
    updateRows();
    isCountDue_ = true;
    count();
    Q_EMIT changed();
}

void AddressCollection::close() {
    if (!std::exchange(isOpen_, false)) return;
    pause_.stop();
    task_.cancel();
    Q_EMIT changed();
}

void AddressCollection::setName(const QString& name) {
    const QString cut = name.left(nameLimit);
    if (cut == name_) return;
    name_ = cut;
    Q_EMIT changed();
}

void AddressCollection::toggleAccount(int row) {
    const CollectionRow* account = accounts_.record(row);
    if (account == nullptr) return;
    const std::string key = account->key;
    if (std::erase(baseKeys_, key) == 0) baseKeys_.push_back(key);
    handleEdit();
}

bool AddressCollection::addAddress(const QString& text) {
    const auto address = extractEmailAddress(text.trimmed().toStdString());
    const std::vector<std::string> typed = {address.value_or("")};
    const auto normal = normalizedArchiveEmailAddresses(typed);
    // Part of an address would collect mail of strangers; a blank has no place in one.
    const bool isAddress = !normal.empty() && normal.front().find_first_of(" \t,;") == std::string::npos &&
                           !normal.front().starts_with('@') && !normal.front().ends_with('@');
    if (!isAddress) return false;
    if (std::ranges::find(texts_, normal.front()) == texts_.end()) texts_.push_back(normal.front());
    handleEdit();
    return true;
}

void AddressCollection::removeAddress(int row) {
    if (row < 0 || std::cmp_greater_equal(row, texts_.size())) return;
    texts_.erase(texts_.begin() + row);
    handleEdit();
}

void AddressCollection::handleEdit() {
    isCountDue_ = true;
    updateRows();
    pause_.start();
    Q_EMIT changed();
}

void AddressCollection::count() {
    CollectionQuestion question{.entries = model_.library().loader.archivedEntries(),
                                .availableAccounts = model_.mail().accounts.availableAccounts(),
                                .rules = model_.library().accountRules.archiveAccountMergeRules(),
                                .formerName = formerName_,
                                .edit = {.id = {}, .title = {}, .baseKeys = baseKeys_, .addresses = texts_}};
    task_.start(
        TaskPriority::userInitiated, std::move(question),
        [](const CollectionQuestion& asked, const TaskHandle& task) {
            return previewOfCollection(asked, task.stopToken());
        },
        [this](CollectionPreview preview) { showPreview(std::move(preview)); });
}

void AddressCollection::showPreview(CollectionPreview preview) {
    preview_ = std::move(preview);
    isCountDue_ = pause_.isActive();
    updateRows();
    Q_EMIT changed();
}

void AddressCollection::updateRows() {
    CollectionRowsModel::Records accounts;
    if (preview_) {
        for (const CollectionPreview::Mails& account : preview_->accounts)
            accounts.push_back({account.key, account.title, account.count, account.bytes,
                                std::ranges::find(baseKeys_, account.key) != baseKeys_.end()});
    }
    accounts_.replace(std::move(accounts));
    CollectionRowsModel::Records addresses;
    for (const std::string& address : texts_) {
        const auto* part = preview_ && !isCountDue_ ? mailsOf(preview_->parts, address) : nullptr;
        addresses.push_back({address, address, part == nullptr ? std::nullopt : std::optional(part->count),
                             part == nullptr ? 0 : part->bytes, true});
    }
    addresses_.replace(std::move(addresses));
}

QString AddressCollection::countText() const {
    return preview_ && !isCountDue_ ? shownCount(preview_->count) : QStringLiteral("—");
}

QString AddressCollection::sizeText() const {
    if (!preview_ || isCountDue_) return {};
    return QStringLiteral("封 · ") + screens::shownSize(preview_->bytes);
}

QVariantList AddressCollection::parts() const {
    QVariantList list;
    if (!preview_) return list;
    std::int64_t most = 1;
    for (const auto& part : preview_->parts) most = std::max(most, part.count);
    for (const auto& part : preview_->parts) {
        const bool isAddress = std::ranges::find(texts_, part.key) != texts_.end();
        const auto* account = mailsOf(preview_->accounts, part.key);
        list.append(QVariantMap{
            {QStringLiteral("title"), screens::shownLine(account == nullptr ? part.title : account->title)},
            {QStringLiteral("symbol"), isAddress ? QStringLiteral("at-sign") : QStringLiteral("mails")},
            {QStringLiteral("countText"), shownCount(part.count)},
            {QStringLiteral("share"), static_cast<double>(part.count) / static_cast<double>(most)}});
    }
    return list;
}

QVariantList AddressCollection::sources() const {
    QVariantList list;
    if (!preview_) return list;
    for (const auto& source : preview_->sources)
        list.append(QVariantMap{{QStringLiteral("title"), screens::shownLine(source.title)},
                                {QStringLiteral("countText"), shownCount(source.count)}});
    return list;
}

bool AddressCollection::isNameTaken() const {
    const std::string name = name_.trimmed().toStdString();
    return name != formerName_ &&
           std::ranges::any_of(model_.library().accountRules.archiveAccountMergeRules(),
                               [&](const auto& rule) { return rule.second == name; });
}

QString AddressCollection::note() const {
    if (name_.trimmed().isEmpty()) return QStringLiteral("先起一个名称");
    if (isNameTaken()) return QStringLiteral("已经有叫这个名称的合集");
    if (baseKeys_.empty() && texts_.empty()) return QStringLiteral("选一个邮箱，或输入一个地址");
    return {};
}

void AddressCollection::save() {
    if (!canSave()) return;
    const ArchiveAddressCollectionEdit edit{
        .id = {}, .title = name_.trimmed().toStdString(), .baseKeys = baseKeys_, .addresses = texts_};
    const std::string former = formerName_;
    close();
    model_.library().accountRules.replaceArchiveAccountGroup(former, edit);
}

void AddressCollection::removeGroup() {
    if (!isExisting()) return;
    const std::string former = formerName_;
    close();
    model_.library().accountRules.removeArchiveAccountGroup(former);
}

} // namespace corvane
