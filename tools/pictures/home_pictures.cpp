// Paints the screens but for the library, and their sheets, in every state, both modes and both sizes, for
// people to look at, or each screen once for the README:
//   home_pictures FOLDER light|dark [STATE...]
//   home_pictures FOLDER readme
#include <vector>

#include "pictures/picture_states.h"

using namespace corvane::testing; // NOLINT(google-build-using-namespace)

int main(int argc, char** argv) {
    std::vector<PictureState> all;
    for (const auto* states : {&homeStates(), &mailListStates(), &confirmationStates(), &runStates(),
                               &overviewStates(), &placeStates()})
        all.insert(all.end(), states->begin(), states->end());
    return paintPictures(argc, argv, all, readmeStates());
}
