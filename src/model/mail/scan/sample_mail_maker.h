// Makes a home with made-up mail by the script that comes with the program. Values and blocking calls:
// background work only.
#pragma once

#include <string>
#include <vector>

#include "platform/platform.h"

namespace corvane {

// Where the script may lie: among the program's files, and for a development build in its source tree.
std::vector<std::string> sampleMailMakers(const platform::Platform& platform);

// The first of `makers` that is there; empty where none is or nothing to run it with, and where samples
// aren't wanted as there is Mail in `mailRoot`.
std::string findSampleMailMaker(const platform::Platform& platform, const std::string& mailRoot,
                                const std::vector<std::string>& makers);

// Makes the home at `home`, which is left alone where it holds mail already. A try that ends early leaves
// nothing at that place. Throws std::exception with what the script said.
void makeSampleMail(const platform::Platform& platform, const std::string& maker, const std::string& home);

} // namespace corvane
