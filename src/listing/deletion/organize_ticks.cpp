#include "listing/deletion/organize_ticks.h"

#include <algorithm>

namespace corvane {

namespace {

// On where all are on, off where all are off.
class Gathered {
  public:
    void add(TickState state) {
        hasOff_ |= state != TickState::on;
        hasOn_ |= state != TickState::off;
    }

    [[nodiscard]] TickState state() const {
        if (!hasOn_) return TickState::off;
        return hasOff_ ? TickState::mixed : TickState::on;
    }

  private:
    bool hasOff_ = false;
    bool hasOn_ = false;
};

// The folders that are ticked, be it through their year.
template <class Visit>
void visitTicked(const OrganizeOverview& overview, const OrganizeTicks& ticks, const Visit& visit) {
    for (const auto& section : overview.sections) {
        for (const OrganizeYearGroup& year : section.years) {
            for (const OrganizeFolderRow& folder : year.folders) {
                if (ticks.stateOf(year, folder) == TickState::on) visit(folder);
            }
        }
    }
}

} // namespace

TickState OrganizeTicks::stateOf(const OrganizeYearGroup& year) const {
    if (yearKeys_.contains(year.key)) return TickState::on;
    const bool hasTicked = std::any_of(year.folders.begin(), year.folders.end(), [this](const auto& folder) {
        return folderKeys_.contains(folder.key);
    });
    return hasTicked ? TickState::mixed : TickState::off;
}

TickState OrganizeTicks::stateOf(const OrganizeYearGroup& year, const OrganizeFolderRow& folder) const {
    return yearKeys_.contains(year.key) || folderKeys_.contains(folder.key) ? TickState::on : TickState::off;
}

TickState OrganizeTicks::stateOf(const OrganizeAccountYearSection& section,
                                 const OrganizeScope& scope) const {
    Gathered gathered;
    for (const OrganizeYearGroup& year : section.years) {
        if (scope.holdsYear(year.year)) gathered.add(stateOf(year));
    }
    return gathered.state();
}

TickState OrganizeTicks::stateOfAll(const OrganizeOverview& overview, const OrganizeScope& scope) const {
    Gathered gathered;
    for (const auto& section : overview.sections) {
        if (!scope.holdsAccount(section.key)) continue;
        for (const OrganizeYearGroup& year : section.years) {
            if (scope.holdsYear(year.year)) gathered.add(stateOf(year));
        }
    }
    return gathered.state();
}

void OrganizeTicks::setYear(const OrganizeYearGroup& year, bool ticked) {
    for (const OrganizeFolderRow& folder : year.folders) folderKeys_.erase(folder.key);
    if (ticked) {
        yearKeys_.insert(year.key);
    } else {
        yearKeys_.erase(year.key);
    }
}

void OrganizeTicks::setFolder(const OrganizeYearGroup& year, const OrganizeFolderRow& folder, bool ticked) {
    if (!ticked) {
        if (yearKeys_.erase(year.key) > 0) {
            for (const OrganizeFolderRow& other : year.folders) folderKeys_.insert(other.key);
        }
        folderKeys_.erase(folder.key);
        return;
    }
    if (yearKeys_.contains(year.key)) return;
    folderKeys_.insert(folder.key);
    const bool isWhole = std::all_of(year.folders.begin(), year.folders.end(),
                                     [this](const auto& other) { return folderKeys_.contains(other.key); });
    if (isWhole) setYear(year, true);
}

void OrganizeTicks::setSection(const OrganizeAccountYearSection& section, const OrganizeScope& scope,
                               bool ticked) {
    for (const OrganizeYearGroup& year : section.years) {
        if (scope.holdsYear(year.year)) setYear(year, ticked);
    }
}

void OrganizeTicks::setAll(const OrganizeOverview& overview, const OrganizeScope& scope, bool ticked) {
    for (const auto& section : overview.sections) {
        if (scope.holdsAccount(section.key)) setSection(section, scope, ticked);
    }
}

bool OrganizeTicks::prune(const OrganizeOverview& overview) {
    OrganizeTicks kept;
    for (const auto& section : overview.sections) {
        for (const OrganizeYearGroup& year : section.years) {
            if (yearKeys_.contains(year.key)) kept.yearKeys_.insert(year.key);
            for (const OrganizeFolderRow& folder : year.folders) {
                if (folderKeys_.contains(folder.key)) kept.folderKeys_.insert(folder.key);
            }
        }
    }
    if (kept == *this) return false;
    *this = std::move(kept);
    return true;
}

OrganizeSelection OrganizeTicks::selectionIn(const OrganizeOverview& overview) const {
    OrganizeSelection selection;
    visitTicked(overview, *this, [&](const OrganizeFolderRow& folder) {
        selection.count += folder.count;
        selection.bytes += folder.bytes;
        selection.years.insert(folder.year);
    });
    return selection;
}

SharedTextSet OrganizeTicks::organizeSelectedMessageIDs(const OrganizeOverview& overview) const {
    SharedTextSet ids;
    visitTicked(overview, *this, [&](const OrganizeFolderRow& folder) {
        ids.insert(folder.messageIDs.begin(), folder.messageIDs.end());
    });
    return ids;
}

} // namespace corvane
