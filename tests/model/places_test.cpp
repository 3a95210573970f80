#include "model/library/archive_places.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>

#include "locations/archive_samples.h"
#include "locations/known_locations.h"
#include "model/archiving/place_jobs.h"
#include "model/corvane_view_model.h"
#include "model/model_test.h"
#include "records/stores/settings_keys.h"
#include "support/faulty_file_layer.h"

namespace corvane::testing {
namespace {

using Kind = ArchivePlaceState::Kind;
using Fault = ArchiveVerdict::Fault;
using Finding = ArchiveVerdict::Finding;

class PlacesTest : public ModelTest {
  protected:
    PlacesTest() { wait(); }

    void wait() { waitUntilIdle(context_.tasks); }

    std::string add(const std::string& folder, int createdAt, const std::vector<std::string>& ids) {
        std::string root = writeArchive(home_, folder, sampleIndex(createdAt, ids));
        model_.addLocation(root);
        wait();
        return root;
    }

    std::map<std::string, ArchivePlace> look() {
        model_.library().places.refresh();
        wait();
        std::map<std::string, ArchivePlace> places;
        for (const ArchivePlace& place : model_.library().places.places()) places[place.root] = place;
        return places;
    }

    FaultyFileLayer files_;
    ModelContext context_{platform_, files_};
    CorvaneViewModel model_{context_};
};

TEST_F(PlacesTest, EachIsInItsOwnStateAndNoneIsCalledGoneThatMayBeElsewhere) {
    const std::string chosen = add("chosen", 1, {"mid:a", "mid:b"});
    model_.archiving().destinations.setTransferDestination(chosen);
    platform_.plugIn("盘");
    const std::string disk = add("Volumes/盘/邮件", 2, {"mid:c"});
    const std::string deleted = add("deleted", 3, {"mid:d"});
    const std::string emptied = add("emptied", 4, {"mid:e"});
    const std::string lost = add("lost", 5, {"mid:f", "mid:g"});
    const std::string unused = home_.makeFolder("unused");
    model_.addLocation(unused);
    model_.addLocation(home_.at("never/there"));
    std::filesystem::remove_all(deleted);
    std::filesystem::remove_all(emptied + "/2019");
    std::filesystem::remove(lost + "/archive-index.json");
    platform_.unplug();
    std::filesystem::rename(home_.at("Volumes/盘"), home_.at("away"));
    model_.addLocation(unused); // another load
    wait();
    const auto places = look();
    EXPECT_EQ(places.at(chosen).state.kind, Kind::connected);
    EXPECT_TRUE(places.at(chosen).isDefault);
    EXPECT_EQ(places.at(chosen).count, 2);
    EXPECT_EQ(places.at(chosen).bytes, 24);
    EXPECT_EQ(places.at(disk).state.kind, Kind::unplugged);
    EXPECT_EQ(places.at(disk).count, 1) << "as it was last seen";
    EXPECT_TRUE(places.at(disk).lastSeen);
    EXPECT_EQ(places.at(deleted).state.kind, Kind::gone);
    EXPECT_TRUE(places.at(emptied).areFilesGone);
    EXPECT_EQ(places.at(unused).state.kind, Kind::unused);
    EXPECT_EQ(places.at(home_.at("never/there")).state.kind, Kind::unplugged);
    EXPECT_FALSE(places.at(home_.at("never/there")).lastSeen);
    EXPECT_EQ(places.at(lost).state, (ArchivePlaceState{Kind::withoutIndex, 2}));
    EXPECT_EQ(model_.library().places.places().front().root, chosen);
    EXPECT_EQ(model_.library().places.places().back().root, deleted);
}

TEST_F(PlacesTest, AVerificationNamesEachFileOnceAndARebuildBringsALostIndexBack) {
    const std::string first = add("first", 1, {"mid:a", "mid:b", "mid:c", "mid:d"});
    home_.write("first/2019/a/mid:b.eml", "Subject: other\n\n");
    std::filesystem::remove(first + "/2019/a/mid:c.eml");
    home_.write("first/2019/a/stray.eml", "Subject: x\n\n");
    const std::string lost = add("lost", 2, {"mid:e"});
    std::filesystem::remove(lost + "/archive-index.json");
    PlaceJobs& jobs = model_.archiving().placeJobs;
    jobs.load();
    wait();
    jobs.start(first, PlaceJobs::Work::verification);
    jobs.start(first, PlaceJobs::Work::rebuild);
    jobs.start(lost, PlaceJobs::Work::rebuild);
    ASSERT_EQ(jobs.jobs().size(), 2U);
    wait();
    EXPECT_TRUE(jobs.jobs().empty());
    const PlaceJobs::End* end = jobs.end(first);
    ASSERT_TRUE(end != nullptr && end->error.empty());
    EXPECT_EQ(end->verdict.checked, 4);
    EXPECT_EQ(end->verdict.intact, 2);
    EXPECT_EQ(end->verdict.withoutHash, 3);
    EXPECT_EQ(end->verdict.findings, (std::vector<Finding>{{"2019/a/mid:c.eml", Fault::missing},
                                                           {"2019/a/mid:b.eml", Fault::otherSize},
                                                           {"2019/a/stray.eml", Fault::unrecorded}}));
    CorvaneViewModel later(context_);
    later.archiving().placeJobs.load();
    wait();
    ASSERT_NE(later.archiving().placeJobs.end(first), nullptr);
    EXPECT_EQ(later.archiving().placeJobs.end(first)->verdict, end->verdict);
    ASSERT_NE(jobs.end(lost), nullptr);
    EXPECT_EQ(jobs.end(lost)->adopted, 1);
    EXPECT_NE(model_.library().loader.location(lost), nullptr) << "the library has read it again";
}

TEST_F(PlacesTest, WhatIsCancelledLeavesTheEarlierVerdictAndWhatCantBeReadSaysWhy) {
    const std::string root = add("archive", 1, {"mid:a"});
    const std::string other = add("other", 2, {"mid:b"});
    PlaceJobs& jobs = model_.archiving().placeJobs;
    jobs.start(root, PlaceJobs::Work::verification);
    wait();
    std::filesystem::remove(root + "/2019/a/mid:a.eml");
    files_.inject({.effect = Effect::hang, .operation = FileOperation::open, .path = root});
    jobs.start(root, PlaceJobs::Work::verification);
    jobs.start(other, PlaceJobs::Work::verification);
    jobs.cancel(other); // it waits
    EXPECT_EQ(jobs.jobs().size(), 1U);
    files_.waitUntilHanging();
    jobs.cancel(root);
    files_.release();
    wait();
    EXPECT_TRUE(jobs.jobs().empty());
    EXPECT_EQ(jobs.end(other), nullptr);
    EXPECT_TRUE(jobs.end(root)->verdict.findings.empty());
    std::filesystem::remove_all(root);
    jobs.start(root, PlaceJobs::Work::verification);
    wait();
    EXPECT_FALSE(jobs.end(root)->error.empty());
}

} // namespace
} // namespace corvane::testing
