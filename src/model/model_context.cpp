#include "model/model_context.h"

#include "platform/paths.h"

namespace corvane {

ModelContext::ModelContext(const platform::Platform& system, platform::FileLayer& files)
  : platform(system)
  , support(system, files)
  , performanceLog(support)
  , startupLog(support, performanceLog)
  , settings(system.settingsPath())
  , mailRootPath(platform::joinPath(system.realUserHomeDirectory(), "Library/Mail")) {}

} // namespace corvane
