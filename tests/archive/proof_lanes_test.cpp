#include "archive/checks/proof_lanes.h"

#include <chrono>

#include <gtest/gtest.h>

#include "support/faulty_file_layer.h"
#include "support/temporary_home.h"

namespace corvane::archive {
namespace {

using testing::Effect;
using testing::FaultyFileLayer;
using testing::FileOperation;

TEST(ProofLanes, APlaceThatHangsIsGivenUpAloneAndWhatItHadAnsweredIsKept) {
    const testing::TemporaryHome home;
    std::vector<ProofRead> reads;
    for (const char* file : {"hung/1.eml", "hung/2.eml", "hung/3.eml", "other/1.eml"}) {
        const std::string path = home.write(file, file);
        const auto cut = path.rfind('/');
        reads.push_back({path.substr(0, cut), path.substr(cut + 1), [](const auto&) { return false; }});
    }
    FaultyFileLayer files;
    files.inject({.at = 1, .effect = Effect::hang, .operation = FileOperation::open, .path = "hung/2"});
    ProofLanes lanes(files, std::chrono::seconds(1), 4);
    const auto results = lanes.read(reads, {});
    EXPECT_TRUE(results[0].reading);
    EXPECT_FALSE(results[1].wasTried);
    EXPECT_FALSE(results[2].wasTried);
    EXPECT_TRUE(results[3].reading);
    EXPECT_EQ(lanes.hungPlaces(), std::set<std::string>{home.at("hung")});
    files.release();
    platform::waitForAbandonedJobs();
    EXPECT_FALSE(lanes.read(reads, {})[2].wasTried) << "it isn't asked again";
}

} // namespace
} // namespace corvane::archive
