// Pictures of the window in given states, for people to look at: in one mode and both sizes.
#pragma once

#include <functional>
#include <vector>

#include <QQuickWindow>

#include "screens/support/window_scene.h"

namespace corvane::testing {

struct PictureState {
    const char* name;
    std::function<void(WindowScene&)> make;
    std::function<void(WindowScene&, QQuickWindow&)> inWindow = {};
};

// The arguments: FOLDER light|dark [STATE...], or FOLDER readme, which paints the states for it once and
// small in bytes. The exit status.
int paintPictures(int argc, char** argv, const std::vector<PictureState>& states,
                  const std::vector<PictureState>& readmeStates = {});

} // namespace corvane::testing
