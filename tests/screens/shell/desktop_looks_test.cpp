#include "screens/controls/theme/desktop_looks.h"

#include <gtest/gtest.h>

#include "support/temporary_home.h"

namespace corvane {
namespace {

TEST(DesktopLooks, FollowTheSettingsOfTheDesktop) {
    using Truth = std::optional<bool>;

    struct Case {
        const char* what;
        const char* gtk4;
        const char* gtk3;
        const char* kde;
        Truth animates;
        Truth isDark;
    };

    const Case cases[] = {
        {"nothing there", "", "", "", {}, {}},
        {"GTK 3 only", "", "[Settings]\ngtk-enable-animations=0\ngtk-application-prefer-dark-theme=1\n", "",
         false, true},
        {"the newer one holds",
         "[Settings]\ngtk-enable-animations=true\n",
         "[Settings]\ngtk-enable-animations=false\n",
         "",
         true,
         {}},
        {"a dark theme by its name",
         "",
         "[Settings]\ngtk-theme-name=Adwaita-dark\ngtk-application-prefer-dark-theme=0\n",
         "",
         {},
         true},
        {"light", "[Settings]\ngtk-application-prefer-dark-theme=false\n", "", "", {}, false},
        {"KDE without motion", "", "", "[KDE]\nAnimationDurationFactor=0\n", false, {}},
        {"KDE with motion", "", "", "[KDE]\nAnimationDurationFactor=0.5\n", true, {}},
        {"not a settings file",
         "\x01\xff[[[",
         "[Settings]\ngtk-enable-animations=perhaps\n",
         "[KDE\n=,",
         {},
         {}},
    };
    for (const Case& example : cases) {
        const testing::TemporaryHome home;
        if (*example.gtk4 != 0) home.write("gtk-4.0/settings.ini", example.gtk4);
        if (*example.gtk3 != 0) home.write("gtk-3.0/settings.ini", example.gtk3);
        if (*example.kde != 0) home.write("kdeglobals", example.kde);
        const DesktopLooks looks = DesktopLooks::of(QString::fromStdString(home.path()));
        EXPECT_EQ(looks.animates, example.animates) << example.what;
        EXPECT_EQ(looks.isDark, example.isDark) << example.what;
    }
}

} // namespace
} // namespace corvane
