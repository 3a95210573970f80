// The settings that travel with the archives: a copy goes into each archive folder, and the user can export
// and import one. After a fresh start the newest copy that the archives hold is offered. Main thread; all
// reading and writing is background work, also of disks that may not answer.
//
// What a backup would change is never taken over by itself: `pendingImport` and `pendingRestore` wait for
// the user's word.
#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>

#include <QObject>

#include "model/model_context.h"
#include "model/tasks/task_slot.h"
#include "records/archive_files/config_backup_file.h"

namespace corvane {

class ConfigBackupFlow : public QObject {
    Q_OBJECT

  public:
    // Looks at once whether this is a fresh start: nothing is chosen, known or ruled.
    explicit ConfigBackupFlow(ModelContext& context, QObject* parent = nullptr);

    // The settings as they are, with the time of now.
    [[nodiscard]] CorvaneConfigBackup currentConfigBackup() const;

    // Into every known folder that is there, each in the place of an earlier copy. Failures are ignored.
    void writeConfigBackupToArchiveFolders();

    // Looks for copies in the archives that can be found on this machine, on a fresh start only;
    // `pendingRestore` is the newest of them.
    void offerConfigBackupOnFreshLaunch();

    // Each ends with `resultMessage` or, for an import that can be read, with `pendingImport`.
    void exportConfig(const std::string& path);
    void importConfig(const std::string& path);

    [[nodiscard]] const std::optional<CorvaneConfigBackup>& pendingImport() const { return pendingImport_; }

    [[nodiscard]] const std::optional<CorvaneConfigBackup>& pendingRestore() const { return pendingRestore_; }

    // The archive that `pendingRestore` was found in; not to be asked for without one.
    [[nodiscard]] const std::string& restoreRoot() const { return restoreRoot_; }

    // What came of the last export or import, for the user; absent before and while one is under way.
    [[nodiscard]] const std::optional<std::string>& resultMessage() const { return resultMessage_; }

    // The last export or import failed.
    [[nodiscard]] bool hasFailed() const { return hasFailed_; }

    // Gives up what waits for the user's word.
    void dismiss();

    // The user has read `resultMessage`.
    void dismissResult();

    // Adds the places of a backup to those that are known, and tells that it was taken over: the rest of it
    // is the model's to apply.
    void adoptLocations(const CorvaneConfigBackup& backup);

    // Whether a path from a backup can name a place of this machine; a relative one would mean another one.
    static bool isUsablePlace(std::string_view path);

  Q_SIGNALS:
    void changed();

  private:
    [[nodiscard]] bool isUntouched() const;
    void begin();
    void end(std::string message, bool hasFailed);

    ModelContext& context_;
    bool isFreshStart_;
    std::optional<CorvaneConfigBackup> pendingImport_;
    std::optional<CorvaneConfigBackup> pendingRestore_;
    std::string restoreRoot_;
    std::optional<std::string> resultMessage_;
    bool hasFailed_ = false;
    TaskSlot configBackupTask_;
    TaskSlot offerTask_;
    TaskSlot fileTask_;
};

} // namespace corvane
