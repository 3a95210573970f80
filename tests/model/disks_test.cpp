#include <filesystem>
#include <string>

#include "locations/archive_samples.h"
#include "model/corvane_view_model.h"
#include "model/model_test.h"

namespace corvane {
namespace {

using platform::MountEvent;
using testing::ModelTest;
using testing::sampleIndex;
using testing::waitUntilIdle;
using testing::writeArchive;

class Disks : public ModelTest {
  protected:
    void plugIn() {
        std::filesystem::rename(home_.at("Pulled"), home_.at("Volumes"));
        platform_.plugIn("STICK");
        send(MountEvent::mounted);
    }

    void pull() {
        std::filesystem::rename(home_.at("Volumes"), home_.at("Pulled"));
        platform_.unplug();
        send(MountEvent::unmounted);
    }

    void send(MountEvent event) {
        platform_.sendMountEvent(event);
        waitUntilIdle(context_.tasks);
    }

    // "-" when the library doesn't list it.
    std::string connection(const std::string& root) {
        const ArchiveLocation* location = model_.library().loader.location(root);
        return location == nullptr ? "-" : location->isConnected ? "connected" : "away";
    }

    std::size_t entries() { return model_.library().loader.archivedEntries()->size(); }

    ModelContext context_{platform_};
    CorvaneViewModel model_{context_};
};

TEST_F(Disks, WhatComesAndGoesIsSeenByItself) {
    const std::string root = writeArchive(home_, "Pulled/STICK/Mail", sampleIndex(1, {"mid:a", "mid:b"}));
    const std::string onStick = home_.at("Volumes/STICK/Mail");
    waitUntilIdle(context_.tasks);
    plugIn();
    EXPECT_EQ(connection(onStick), "connected") << "an archive on a disk that nobody has named";
    pull();
    EXPECT_EQ(connection(onStick), "away");
    EXPECT_EQ(entries(), 2U);
    EXPECT_TRUE(model_.library().loader.archivedFiles()->byRoot.empty())
        << "nothing is known of its files now";
    plugIn();
    EXPECT_EQ(connection(onStick), "connected");
    std::filesystem::copy(onStick, home_.at("Copy"), std::filesystem::copy_options::recursive);
    model_.library().loader.loadEmailArchiveIndex(home_.at("Copy"), true);
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(connection(home_.at("Copy")), "connected");
    EXPECT_EQ(connection(onStick), "-") << "one archive seen twice is listed once";
    EXPECT_EQ(entries(), 2U);
}

} // namespace
} // namespace corvane
