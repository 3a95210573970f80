// Whether the Mail store is there and can be read, and the user's text where a scan found nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <QObject>

#include "model/model_context.h"
#include "model/tasks/task_slot.h"

namespace corvane {

struct MailStore;

// A store that isn't there is no lack of permission: only an index that exists and gives no byte is.
bool canReadMailData(const std::string& mailRootPath);

struct EmptyScanMessage {
    std::string text;
    bool isYearRangeInfo = false; // advice on the year, not an error
};

// Why a scan found nothing. Any thread; touches the disk and may run a query.
EmptyScanMessage emptyScanFailureMessage(const MailStore& store, std::optional<std::int64_t> maximumYear);

inline constexpr const char* missingMailRootMessage =
    "没有找到本机 Mail 数据目录。请先打开 Apple Mail 并完成账户同步。";

// Tests the permission in the background and keeps the answer. Main thread.
class FullDiskAccess : public QObject {
    Q_OBJECT

  public:
    explicit FullDiskAccess(ModelContext& context, QObject* parent = nullptr)
      : QObject(parent)
      , context_(context)
      , task_(context.tasks) {}

    [[nodiscard]] bool needsFullDiskAccess() const { return needsFullDiskAccess_; }

    // Looks again in the background; `needsFullDiskAccessChanged` follows where the answer is another one.
    void refreshFullDiskAccessState();

  Q_SIGNALS:
    void needsFullDiskAccessChanged();

  private:
    ModelContext& context_;
    bool needsFullDiskAccess_ = false;
    TaskSlot task_;
};

} // namespace corvane
