// What the user has ticked on the organize home: whole years, and single folders of years that aren't ticked.
// It says what will be archived, not what is looked at. A year all of whose folders are ticked is a ticked
// year, so that mail which comes into it later belongs to it.
#pragma once

#include <cstdint>
#include <set>
#include <string>

#include "listing/deletion/organize_sections.h"

namespace corvane {

enum class TickState { off, mixed, on };

struct OrganizeSelection {
    std::int64_t count = 0;
    std::int64_t bytes = 0;
    std::set<std::int64_t> years;
};

class OrganizeTicks {
  public:
    [[nodiscard]] const std::set<std::string>& selectedOrganizeYearKeys() const { return yearKeys_; }

    [[nodiscard]] const std::set<std::string>& selectedOrganizeFolderKeys() const { return folderKeys_; }

    [[nodiscard]] bool isEmpty() const { return yearKeys_.empty() && folderKeys_.empty(); }

    [[nodiscard]] TickState stateOf(const OrganizeYearGroup& year) const;
    [[nodiscard]] TickState stateOf(const OrganizeYearGroup& year, const OrganizeFolderRow& folder) const;

    // Of the years in the scope; off when there are none.
    [[nodiscard]] TickState stateOf(const OrganizeAccountYearSection& section,
                                    const OrganizeScope& scope) const;
    [[nodiscard]] TickState stateOfAll(const OrganizeOverview& overview, const OrganizeScope& scope) const;

    void setYear(const OrganizeYearGroup& year, bool ticked);

    // Unticking one folder of a ticked year leaves the others ticked.
    void setFolder(const OrganizeYearGroup& year, const OrganizeFolderRow& folder, bool ticked);

    // All years in the scope.
    void setSection(const OrganizeAccountYearSection& section, const OrganizeScope& scope, bool ticked);
    void setAll(const OrganizeOverview& overview, const OrganizeScope& scope, bool ticked);

    // Drops what no longer has messages. True when something was dropped.
    bool prune(const OrganizeOverview& overview);

    [[nodiscard]] OrganizeSelection selectionIn(const OrganizeOverview& overview) const;

    // Any thread, on a copy.
    [[nodiscard]] SharedTextSet organizeSelectedMessageIDs(const OrganizeOverview& overview) const;

    friend bool operator==(const OrganizeTicks&, const OrganizeTicks&) = default;

  private:
    std::set<std::string> yearKeys_;
    std::set<std::string> folderKeys_;
};

} // namespace corvane
