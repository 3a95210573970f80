// What the program wanted to keep of its own and couldn't: what was compared, the last scan, settings. The
// next run of the program knows nothing of it.
#pragma once

#include <string>

#include "model/model_context.h"
#include "platform/settings_store.h"
#include "records/stores/app_support.h"

namespace corvane {

// For the user, with place and reason; empty while everything was kept. Main thread.
std::string unkeptText(const ModelContext& context);

// The same of results alone; any thread.
std::string unkeptResultsText(const CorvaneAppSupport& support);

// And of settings.
std::string unkeptSettingsText(const platform::SettingsStore& settings);

} // namespace corvane
