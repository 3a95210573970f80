// A library that is made up, with whole mails in two archives, to be looked at or driven.
#pragma once

#include <string>

#include "screens/support/window_scene.h"

namespace corvane::testing {

struct LibraryScene {
    std::string cloudRoot;
    std::string diskRoot; // of the disk "归档盘 A", which is plugged in
};

// Thirteen years of mail, its bodies indexed: threads, attachments, a signature, quoted history. What the
// search finds for "补充协议" is in subjects, bodies and history.
LibraryScene fillLibrary(WindowScene& scene);

} // namespace corvane::testing
