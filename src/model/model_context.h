// What every component of the model is built on. Made once by the entry of the program; outlives the model.
// Components take it by reference and keep the reference.
#pragma once

#include <string>

#include "model/tasks/task_runner.h"
#include "platform/files/layers/file_layer.h"
#include "platform/platform.h"
#include "platform/settings_store.h"
#include "records/logs/performance_log.h"
#include "records/logs/startup_log.h"
#include "records/stores/app_support.h"

namespace corvane {

struct ModelContext {
    // All that the model writes goes through `files`.
    explicit ModelContext(const platform::Platform& system,
                          platform::FileLayer& files = platform::posixFileLayer());

    const platform::Platform& platform;
    CorvaneAppSupport support;
    MailPerformanceLog performanceLog;
    ArchiveLibraryStartupLog startupLog;
    platform::SettingsStore settings; // main thread only
    std::string mailRootPath;         // "Library/Mail" of the user's real home
    TaskRunner tasks;
};

} // namespace corvane
