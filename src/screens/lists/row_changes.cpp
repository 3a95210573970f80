#include "screens/lists/row_changes.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

namespace corvane {

namespace {

constexpr int gone = -1;

bool showsTheSame(const MailMessageRecord& a, const MailMessageRecord& b) {
    return a.subject == b.subject && a.sender == b.sender && a.date == b.date && a.preview == b.preview &&
           a.messageSize == b.messageSize && a.attachments.size() == b.attachments.size();
}

void extend(std::vector<RowRun>& runs, int row) {
    if (!runs.empty() && runs.back().first + runs.back().count == row) {
        ++runs.back().count;
    } else {
        runs.push_back({row, 1});
    }
}

// Most changes are small: only what lies between the equal ends has to be looked up.
std::vector<int> newRowsOf(const MessageList& from, const MessageList& to) {
    const std::size_t shorter = std::min(from.size(), to.size());
    std::size_t head = 0;
    while (head < shorter && from[head].id == to[head].id) ++head;
    std::size_t tail = 0;
    while (tail < shorter - head && from[from.size() - 1 - tail].id == to[to.size() - 1 - tail].id) ++tail;

    std::vector<int> newRows(from.size(), gone);
    for (std::size_t row = 0; row < head; ++row) newRows[row] = static_cast<int>(row);
    for (std::size_t step = 1; step <= tail; ++step) {
        newRows[from.size() - step] = static_cast<int>(to.size() - step);
    }
    if (head + tail == from.size() || head + tail == to.size()) return newRows;
    std::unordered_map<std::string_view, int> rowByID;
    rowByID.reserve(to.size() - head - tail);
    for (std::size_t row = head; row < to.size() - tail; ++row) {
        rowByID.emplace(to[row].id.view(), static_cast<int>(row));
    }
    for (std::size_t row = head; row < from.size() - tail; ++row) {
        const auto found = rowByID.find(from[row].id.view());
        if (found != rowByID.end()) newRows[row] = found->second;
    }
    return newRows;
}

bool keepsOrder(const std::vector<int>& newRows) {
    int latest = gone;
    for (const int row : newRows) {
        if (row == gone) continue;
        if (row <= latest) return false;
        latest = row;
    }
    return true;
}

void collectRuns(RowChanges& changes, const MessageList& from, const MessageList& to) {
    int next = 0;
    const auto insertUpTo = [&](int end) {
        for (; next < end; ++next) extend(changes.inserted, next);
    };
    for (std::size_t row = 0; row < from.size(); ++row) {
        const int newRow = changes.newRows[row];
        if (newRow == gone) {
            extend(changes.removed, static_cast<int>(row));
            continue;
        }
        insertUpTo(newRow);
        if (!showsTheSame(from[row], to[static_cast<std::size_t>(newRow)])) extend(changes.changed, newRow);
        next = newRow + 1;
    }
    insertUpTo(static_cast<int>(to.size()));
}

} // namespace

RowChanges rowChanges(const MessageList& from, const MessageList& to, std::size_t mostRuns) {
    RowChanges changes;
    changes.newRows = newRowsOf(from, to);
    if (keepsOrder(changes.newRows)) {
        collectRuns(changes, from, to);
        if (changes.removed.size() + changes.inserted.size() + changes.changed.size() <= mostRuns) {
            return changes;
        }
    }
    return {
        .isReset = true, .removed = {}, .inserted = {}, .changed = {}, .newRows = std::move(changes.newRows)};
}

} // namespace corvane
