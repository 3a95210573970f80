// The readings of files, kept in the application's folder: what a proof needn't read again. A database of its
// own; whatever is wrong with it, it is made anew, and files are read again. Only this user can read it.
//
// Any thread, one at a time for each object; several processes may use the file at a time.
#pragma once

#include <memory>
#include <string>

#include "platform/sqlite.h"
#include "records/archived/proof_facts.h"
#include "records/stores/app_support.h"

namespace corvane {

class ProofStore {
  public:
    explicit ProofStore(CorvaneAppSupport support);

    // All readings. Empty where there is no file, or where it can't be used. Never null.
    [[nodiscard]] std::shared_ptr<ProofFacts> load();

    // Of the file, which another process may have changed as well; `unknownStamp` without one.
    [[nodiscard]] FileStamp stamp() const;

    // Adds the readings in one step, each in the place of an earlier one of its file. False when they
    // couldn't be kept: they will be made again. Where they contradict what was kept, nothing of that stays;
    // the application's folder is told if it has to (CorvaneAppSupport::setOutdatedReadings).
    bool save(const ReadingBatch& batch);

    // Takes the readings of these files away in one step. Without effect when that can't be done: they say
    // nothing of files that aren't there.
    void remove(const ReadingPaths& paths);

  private:
    std::shared_ptr<ProofFacts> read();
    void takeBack(const ReadingBatch& batch);
    int open();
    bool makeFile();
    bool removeFile();

    CorvaneAppSupport support_;
    std::string path_;
    platform::SqliteConnection database_; // null until needed
};

} // namespace corvane
