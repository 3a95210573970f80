// Whether the Mail store is there and can be read, and what the user has to permit where it can't.
#pragma once

#include <optional>
#include <string>

#include <QObject>

#include "model/model_context.h"
#include "model/tasks/task_slot.h"
#include "platform/files/path_access.h"

namespace corvane {

// A store that isn't there is no lack of permission: a folder on the way that can't be looked into is, and an
// index that gives no byte.
bool canReadMailData(const std::string& mailRootPath);

// What can't be read of a store of which canReadMailData() is false: the first folder on the way to its
// index, or the index.
platform::PathAccess mailDataObstacle(const std::string& mailRootPath);

// Tests the permission in the background and keeps the answer. Main thread.
class FullDiskAccess : public QObject {
    Q_OBJECT

  public:
    explicit FullDiskAccess(ModelContext& context, QObject* parent = nullptr)
      : QObject(parent)
      , context_(context)
      , task_(context.tasks) {}

    [[nodiscard]] bool needsFullDiskAccess() const { return needsFullDiskAccess_; }

    // What can't be read; absent where everything can, and before it was looked at.
    [[nodiscard]] const std::optional<platform::PathAccess>& obstacle() const { return obstacle_; }

    [[nodiscard]] bool isChecking() const { return isChecking_; }

    // Looks again in the background; `needsFullDiskAccessChanged` follows where the answer is another one,
    // and `checked` in any case.
    void refreshFullDiskAccessState();

  Q_SIGNALS:
    void needsFullDiskAccessChanged();
    void checkStarted();
    void checked();

  private:
    ModelContext& context_;
    bool needsFullDiskAccess_ = false;
    bool isChecking_ = false;
    std::optional<platform::PathAccess> obstacle_;
    TaskSlot task_;
};

} // namespace corvane
