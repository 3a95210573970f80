// Removes, once a start, what killed processes of this program left in the support folder and in the folder
// for temporary files. Main thread; the work is upkeep in the background, and its failures are ignored.
#pragma once

#include "model/model_context.h"
#include "model/tasks/task_slot.h"

namespace corvane {

class LeftoverRemoval {
  public:
    explicit LeftoverRemoval(ModelContext& context)
      : context_(context)
      , task_(context.tasks) {}

    void start();

  private:
    ModelContext& context_;
    TaskSlot task_;
};

} // namespace corvane
