// The index of archived mail, its list and the groups of accounts, as they follow the library.
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "locations/archive_samples.h"
#include "locations/known_locations.h"
#include "model/library/account_rules.h"
#include "model/library/library_list_flow.h"
#include "model/model_test.h"

namespace corvane {
namespace {

using testing::ModelTest;
using testing::sampleIndex;
using testing::waitUntilIdle;
using testing::writeArchive;

using Ids = std::vector<std::string>;

class LibraryViews : public ModelTest {
  protected:
    LibraryViews() {
        QObject::connect(&rules_, &AccountRules::rulesChanged, [this] { index_.onInputsChanged(); });
        QObject::connect(&loader_, &LibraryLoader::archivedEntriesChanged,
                         [this] { index_.onInputsChanged(); });
    }

    void load(std::initializer_list<std::pair<const char*, Ids>> archives) {
        int createdAt = 1;
        Ids roots;
        for (const auto& [folder, ids] : archives)
            roots.push_back(writeArchive(home_, folder, sampleIndex(++createdAt, ids)));
        setKnownLocations(context_.settings, roots);
        loader_.loadEmailArchiveIndex(std::nullopt, true);
        waitUntilIdle(context_.tasks);
    }

    [[nodiscard]] Ids listed() const {
        Ids ids;
        for (const EntryPosition position : list_.list()->entries.entries())
            ids.push_back(list_.list()->index().entry(position).record.id.str());
        return ids;
    }

    [[nodiscard]] std::string idOf(std::optional<EntryPosition> position) const {
        return position ? list_.list()->index().entry(*position).record.id.str() : "";
    }

    void waitForListed(const Ids& ids) {
        QEventLoop loop;
        QTimer::singleShot(std::chrono::seconds(60), &loop, &QEventLoop::quit);
        QObject::connect(&list_, &LibraryListFlow::listChanged, &loop, [&] {
            if (listed() == ids) loop.quit();
        });
        if (listed() != ids) loop.exec();
        EXPECT_EQ(listed(), ids);
    }

    // Until the list is that of the last search.
    void waitForSearch(int searches) {
        QEventLoop loop;
        QTimer::singleShot(std::chrono::seconds(60), &loop, &QEventLoop::quit);
        QObject::connect(&list_, &LibraryListFlow::listChanged, &loop, &QEventLoop::quit);
        loop.exec();
        waitUntilIdle(context_.tasks);
        EXPECT_EQ(searches_, searches);
    }

    ModelContext context_{platform_};
    AccountRules rules_{context_};
    LibraryLoader loader_{context_};
    LibraryIndexFlow index_{context_, [this] {
                                return LibraryIndexInput{loader_.archivedEntries(),
                                                         {},
                                                         rules_.archiveAccountMergeRules(),
                                                         loader_.archiveLocations()};
                            }};
    BodyTexts texts_{context_, loader_, nullptr,
                     [](const std::vector<FileURL>& files, const std::stop_token&) {
                         BodyTextByPath texts;
                         for (const FileURL& file : files)
                             texts.emplace(file.path(), "正文 " + std::string(file.lastPathComponent()));
                         return texts;
                     }};
    LibraryListFlow list_{context_, index_, texts_};
    int searches_ = 0;
};

TEST_F(LibraryViews, AnIndexIsMadeOnceSomebodyWantsItAndThenFollows) {
    load({{"one", {"a", "b"}}});
    EXPECT_EQ(index_.index()->size(), 0U);
    index_.rebuildLibraryIndexIfNeeded();
    EXPECT_FALSE(index_.isCurrent());
    waitUntilIdle(context_.tasks);
    EXPECT_TRUE(index_.isCurrent());
    EXPECT_EQ(listed(), (Ids{"a", "b"}));
    const SharedLibraryIndex made = index_.index();
    index_.rebuildLibraryIndexIfNeeded();
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(index_.index(), made);

    list_.selectLibraryRow(1, {});
    load({{"nought", {"c"}}, {"one", {"a", "b"}}});
    EXPECT_EQ(listed(), (Ids{"c", "a", "b"}));
    EXPECT_EQ(idOf(list_.selection().selectedID()), "b");
    EXPECT_EQ(list_.selection().librarySelectedIDs(), std::vector<EntryPosition>{2});
    list_.setLibraryLocationFilter(home_.at("one"));
    list_.setSortAscending(true);
    EXPECT_EQ(listed(), (Ids{"b", "a"}));
    EXPECT_EQ(list_.list()->accountOptions[0].count, 2);
    EXPECT_EQ(list_.list()->locationOptions.size(), 2U);
}

TEST_F(LibraryViews, GroupsAreStoredAndMakeAnotherIndex) {
    load({{"one", {"a"}}});
    index_.rebuildLibraryIndexIfNeeded();
    std::string made;
    QObject::connect(&rules_, &AccountRules::collectionMade,
                     [&](const QString& key) { made = key.toStdString(); });
    const Ids bases = {"legacy-unclassified"};
    const Ids addresses = {" Me@X ", "nobody"};
    EXPECT_FALSE(rules_.setArchiveAccountAddressCollection(bases, addresses, " "));
    EXPECT_TRUE(rules_.setArchiveAccountAddressCollection(bases, addresses, " 组 "));
    EXPECT_EQ(made, "usergroup:组");
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(index_.index()->accountOptions()[0].key, "usergroup:组");
    EXPECT_EQ(AccountRules(context_).archiveAccountMergeRules(),
              (ArchiveAccountMergeRules{
                  {"email:me@x", "组"}, {"inferred:me@x", "组"}, {"legacy-unclassified", "组"}}));
    EXPECT_EQ(rules_.removeArchiveAccountGroup("组"), 3U);
    EXPECT_TRUE(AccountRules(context_).archiveAccountMergeRules().empty());
}

TEST_F(LibraryViews, ASearchWaitsForTheLastKeyAndIsGivenUpAtOnce) {
    load({{"one", {"a", "b", "bb"}}});
    texts_.rebuildBodyTextIndex(false);
    index_.rebuildLibraryIndexIfNeeded();
    waitUntilIdle(context_.tasks);
    list_.selectFirstVisibleIfNeeded();
    EXPECT_EQ(idOf(list_.selection().selectedID()), "a");
    QObject::connect(&list_, &LibraryListFlow::searchChanged, [this] {
        if (list_.filters().matchedIDs == nullptr && !list_.debouncedQuery().empty()) ++searches_;
    });
    for (const char* text : {"正", "正文", " 正文 b "}) list_.setSearchText(text);
    waitForSearch(2); // begun, and answered
    EXPECT_EQ(list_.debouncedQuery(), "正文 b");
    EXPECT_EQ(listed(), (Ids{"b", "bb"}));
    EXPECT_EQ(idOf(list_.selection().selectedID()), "b");

    // What comes later is found as well.
    load({{"one", {"a", "b", "bb"}}, {"two", {"b3"}}});
    texts_.rebuildBodyTextIndex(false);
    index_.rebuildLibraryIndexIfNeeded();
    waitForListed({"b", "bb", "b3"});
    list_.setSearchText(" ");
    EXPECT_EQ(listed().size(), 4U);
    EXPECT_EQ(list_.debouncedQuery(), "");
}

} // namespace
} // namespace corvane
