// The states in which the pictures show the window, by the screen that they are of.
#pragma once

#include <vector>

#include "screens/support/window_pictures.h"

namespace corvane::testing {

const std::vector<PictureState>& homeStates();
const std::vector<PictureState>& mailListStates();

// The sheets before, during and after a run.
const std::vector<PictureState>& confirmationStates();
const std::vector<PictureState>& runStates();

// The overview of archived mail and the space.
const std::vector<PictureState>& overviewStates();

// The sheets of places and settings.
const std::vector<PictureState>& placeStates();

// The five screens over one archive of mail without oddities.
const std::vector<PictureState>& readmeStates();

} // namespace corvane::testing
