#include "records/stores/account_cache_store.h"

#include <tuple>

#include "records/json/record_file.h"
#include "records/json/record_forms.h"

namespace corvane {

template <>
struct JsonForm<MailAccountCache> {
    using R = MailAccountCache;
    static constexpr auto fields =
        std::tuple{jsonField("cachedAt", &R::cachedAt), jsonField("mailRootPath", &R::mailRootPath),
                   jsonField("accounts", &R::accounts)};
};

namespace {

constexpr std::string_view fileName = "mail-account-cache.json";

} // namespace

std::optional<std::vector<MailAccount>> MailAccountCacheStore::load(const std::string& mailRootPath) const {
    auto cache = readRecordFile<MailAccountCache>(support_.filePath(fileName));
    if (!cache || cache->mailRootPath != mailRootPath) return std::nullopt;
    return std::move(cache->accounts);
}

void MailAccountCacheStore::save(const std::string& mailRootPath,
                                 const std::vector<MailAccount>& accounts) const {
    std::ignore = support_.writeFile(
        fileName, encodeJson(MailAccountCache{currentTimestamp(), mailRootPath, accounts}));
}

} // namespace corvane
