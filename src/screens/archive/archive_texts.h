// The texts of the archive sheet, as functions of what they tell about.
#pragma once

#include <cstdint>
#include <optional>
#include <set>

#include <QString>
#include <QStringList>

#include "listing/deletion/deletion_safety.h"
#include "screens/texts/destination_texts.h"

namespace corvane::screens {

// Also says why the button can't be pressed.
QString archiveButtonTitle(const DestinationView& destination, std::int64_t selectedCount);

QString archiveSelectionSummary(std::int64_t count, std::int64_t bytes);

// How many of how many candidates are ticked.
QString archiveTickedText(std::int64_t tickedCount, std::int64_t count);

// "全部年份" for no years.
QString archiveScopeTitle(const std::set<std::int64_t>& years);

QString archiveEmptyTitle(const DeletionSafety& safety);
QString archiveEmptyDescription(const QString& scopeTitle, const DeletionSafety& safety);

// Without a known free space there is no saying so.
bool isSpaceShort(std::int64_t selectedBytes, std::optional<std::int64_t> availableBytes);

// What is missing before a run, or what the run does.
QString archiveFootnote(const DestinationView& destination);

// Of `allSizePresets`, in their order.
QStringList archiveSizeTitles();

// Needed and free.
QString archiveSpaceText(std::int64_t selectedBytes, std::optional<std::int64_t> availableBytes);

} // namespace corvane::screens
