// What a library index can't do without, as a plain program: floor_library index COUNT | threads COUNT. Texts
// are numbered by the standard library's maps, everything in between is integers, and the texts by which
// others know entries are made at the end. Prints processor seconds.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <numeric>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "library_samples.h"

namespace {

using corvane::ArchivedEntry;
using Numbers = std::vector<std::uint32_t>;

struct PlainEntry {
    std::string id; // with its root
    std::string messageIdentifier;
    std::vector<std::string> references;
    std::string subject;
    std::string account;
    std::int64_t date = 0;
};

std::vector<PlainEntry> plain(const std::vector<ArchivedEntry>& entries) {
    std::vector<PlainEntry> all;
    for (const ArchivedEntry& entry : entries) {
        PlainEntry one{entry.id(), entry.record.messageIdentifier->str(), {}, entry.record.subject.str(), {},
                       0};
        if (entry.record.referencedMessageIdentifiers) {
            for (const auto& reference : *entry.record.referencedMessageIdentifiers)
                one.references.push_back(reference.str());
        }
        if (entry.record.accountName) one.account = entry.record.accountName->str();
        one.date = entry.record.date->time_since_epoch().count();
        all.push_back(std::move(one));
    }
    return all;
}

// ASCII letters alone in lower case, without prefixes, short numbers as "#".
std::string subjectKey(std::string_view subject) {
    for (bool cut = true; cut;) {
        cut = false;
        for (const std::string_view prefix : {"Re: ", "Fwd: ", "答复："}) {
            if (!subject.starts_with(prefix)) continue;
            subject.remove_prefix(prefix.size());
            cut = true;
        }
    }
    std::string key;
    for (std::size_t at = 0; at < subject.size();) {
        std::size_t end = at;
        while (end < subject.size() && subject[end] >= '0' && subject[end] <= '9') ++end;
        if (end == at) {
            key += subject[at] >= 'A' && subject[at] <= 'Z' ? static_cast<char>(subject[at] | 0x20)
                                                            : subject[at];
            ++at;
        } else {
            end - at > 8 ? key.append(subject.substr(at, end - at)) : key.append("#");
            at = end;
        }
    }
    return key;
}

struct Sets {
    explicit Sets(std::size_t count)
      : parent(count) {
        std::iota(parent.begin(), parent.end(), 0U);
    }

    std::uint32_t root(std::uint32_t at) {
        while (parent[at] != at) at = parent[at] = parent[parent[at]];
        return at;
    }

    void unite(std::uint32_t a, std::uint32_t b) {
        const std::uint32_t top = root(a);
        parent[root(b)] = top;
    }

    Numbers parent;
};

Numbers threads(const std::vector<PlainEntry>& entries) {
    Sets sets(entries.size());
    std::unordered_map<std::string_view, std::uint32_t> owners;
    owners.reserve(entries.size());
    std::unordered_map<std::string, std::uint32_t> absent;
    std::unordered_map<std::string, std::uint32_t> subjects;
    for (std::uint32_t at = 0; at < entries.size(); ++at) {
        const auto [owner, isNew] = owners.try_emplace(entries[at].messageIdentifier, at);
        if (!isNew) sets.unite(owner->second, at);
    }
    for (std::uint32_t at = 0; at < entries.size(); ++at) {
        const std::string key = subjectKey(entries[at].subject);
        for (const std::string& reference : entries[at].references) {
            const auto known = owners.find(reference);
            if (known != owners.end()) {
                sets.unite(known->second, at);
                continue;
            }
            const auto [owner, isNew] = absent.try_emplace(key + '\x01' + reference, at);
            if (!isNew) sets.unite(owner->second, at);
        }
        const auto [owner, isNew] = subjects.try_emplace(key, at);
        if (!isNew) sets.unite(owner->second, at);
    }
    Numbers roots(entries.size());
    for (std::uint32_t at = 0; at < roots.size(); ++at) roots[at] = sets.root(at);
    return roots;
}

std::vector<Numbers> grouped(const Numbers& list, const Numbers& roots) {
    std::vector<Numbers> groups;
    std::unordered_map<std::uint32_t, std::size_t> groupOf;
    for (const std::uint32_t at : list) {
        const auto [group, isNew] = groupOf.try_emplace(roots[at], groups.size());
        if (isNew) groups.emplace_back();
        groups[group->second].push_back(at);
    }
    return groups;
}

std::size_t index(const std::vector<PlainEntry>& entries) {
    const Numbers roots = threads(entries);
    Numbers order(entries.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return entries[a].date > entries[b].date; });
    std::unordered_map<std::string_view, std::uint32_t> accounts;
    std::vector<Numbers> byAccount;
    for (const std::uint32_t at : order) {
        const auto [account, isNew] = accounts.try_emplace(entries[at].account, byAccount.size());
        if (isNew) byAccount.emplace_back();
        byAccount[account->second].push_back(at);
    }
    std::size_t count = 0;
    for (int direction = 0; direction < 2; ++direction) {
        count += grouped(order, roots).size();
        for (Numbers& list : byAccount) {
            count += grouped(list, roots).size();
            std::reverse(list.begin(), list.end());
        }
        std::reverse(order.begin(), order.end());
    }
    std::unordered_map<std::string_view, std::uint32_t> byID;
    std::vector<std::string> threadKeys;
    for (std::uint32_t at = 0; at < entries.size(); ++at) {
        byID.emplace(entries[at].id, at);
        threadKeys.push_back("thread:" + entries[roots[at]].id);
    }
    return count + byID.size();
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) return 2;
    const auto entries = plain(corvane::bench::makeArchivedEntries(std::stoul(arguments[2])));
    const std::clock_t start = std::clock();
    const std::size_t made =
        std::string_view(arguments[1]) == "index" ? index(entries) : threads(entries).size();
    std::printf("%.6f\n", static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    return made == 0;
}
