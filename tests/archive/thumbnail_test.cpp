#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "archive/attachments/thumbnail_maker.h"
#include "platform/files/directory.h"
#include "support/scripted_platform.h"
#include "text/charsets/encoding.h"

namespace corvane::testing {
namespace {

constexpr std::string_view smallPng =
    "iVBORw0KGgoAAAANSUhEUgAAAAQAAAACCAAAAABawyK/AAAADklEQVR4nGNoAAIGEAEAFAoEAeiOg+cAAAAASUVORK5CYII=";
constexpr std::string_view hugePng =
    "iVBORw0KGgoAAAANSUhEUgAA6mAAAOpgCAAAAACluSqeAAAADElEQVR4nGNgoD0AAABkAAGGZDw1AAAAAElFTkSuQmCC";
constexpr std::string_view smallBmp =
    "Qk0+AAAAAAAAADYAAAAoAAAAAQAAAAEAAAABABgAAAAAAAQAAAAAAAAAAAAAAAAAAAAAAAAAAQIDAA==";
constexpr std::string_view smallGif = "R0lGODlhAQABAIAAAAAAAP///ywAAAAAAQABAAACAkQBADs=";

class ThumbnailTest : public ::testing::Test {
  protected:
    // "WIDTHxHEIGHT", with the first pixel; empty without a thumbnail.
    std::string made(const std::string& bytes, int edge = 96) {
        const auto thumbnail = makeThumbnail(platform_, home_.write("file", bytes), edge);
        if (!thumbnail) return {};
        const auto red = static_cast<unsigned char>(thumbnail->pixels.front());
        return std::to_string(thumbnail->width) + "x" + std::to_string(thumbnail->height) + " " +
               std::to_string(red);
    }

    const TemporaryHome home_;
    ScriptedPlatform platform_{home_};
};

TEST_F(ThumbnailTest, KnownPicturesWithinTheLimitsAndNothingElse) {
    platform_.resourceFolders = {CORVANE_PROGRAMS};
    if (!platform::isExecutableFile(CORVANE_PROGRAMS "/corvane-thumbnail")) GTEST_SKIP();
    const auto bytes = [](std::string_view base64) { return *text::base64Decoded(base64); };
    EXPECT_EQ(made(bytes(smallPng)), "4x2 128");
    EXPECT_EQ(made(bytes(smallPng), 2), "2x1 128");
    EXPECT_EQ(made(bytes(smallBmp)), "1x1 3");
    EXPECT_EQ(made(bytes(smallGif)), "1x1 0");
    EXPECT_EQ(made(bytes(hugePng)), "") << "3.6 thousand million pixels";
    EXPECT_EQ(made(bytes(smallPng).substr(0, 30)), "");
    EXPECT_EQ(made("<svg xmlns='http://www.w3.org/2000/svg' width='4' height='4'/>"), "");
    EXPECT_EQ(made("\xff\xd8\xff not a photograph"), "");
    const std::string link = home_.at("link");
    std::filesystem::create_symlink(home_.write("there.png", bytes(smallPng)), link);
    EXPECT_FALSE(makeThumbnail(platform_, link, 96));
}

TEST_F(ThumbnailTest, ADecoderThatWasTakenOverGivesNoMoreThanAPicture) {
    platform_.resourceFolders = {home_.makeFolder("programs")};
    const std::string picture = *text::base64Decoded(smallPng);
    const auto answers = [&](const std::string& lines) {
        const std::string script = home_.write("programs/corvane-thumbnail", "#!/bin/sh\n" + lines + "\n");
        std::filesystem::permissions(script, std::filesystem::perms::owner_all);
        return made(picture, 2);
    };
    EXPECT_EQ(answers("printf '1 1\\nabcd'"), "1x1 97");
    for (const char* const lines :
         {"printf '1 1\\nabcd'; exit 1", "printf '1 1\\nabcde'", "printf '1 2\\nabcd'", "printf '3 0\\n'",
          "printf -- '-1 -1\\nabcd'", "printf '1 1'", "kill -SEGV $$", "yes"})
        EXPECT_EQ(answers(lines), "") << lines;
}

} // namespace
} // namespace corvane::testing
