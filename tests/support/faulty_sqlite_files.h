// The files of all SQLite databases of this process that are opened while it lives, with an operation that
// fails: the k-th one, or that and all later ones. Syncs do nothing else, so that tests are quick. One at a
// time, and it has to outlive what it opened; the databases may be used from several threads.
#pragma once

#include <memory>

namespace corvane::testing {

enum class SqliteFault {
    error,   // any operation: the disk gives an input or output error
    full,    // what makes a file larger or writes to it: the disk is full
    lockLost // taking a lock
};

class FaultySqliteFiles {
  public:
    FaultySqliteFiles();
    FaultySqliteFiles(const FaultySqliteFiles&) = delete;
    FaultySqliteFiles& operator=(const FaultySqliteFiles&) = delete;
    ~FaultySqliteFiles();

    // Counts from 1, from now on, among the operations that can fail so.
    void failAt(int operation, SqliteFault fault, bool isLasting);

    // Nothing fails any more.
    void heal();

    // The operation that was to fail was reached.
    [[nodiscard]] bool hasFailed() const;

    struct State;

  private:
    std::unique_ptr<State> state_;
};

} // namespace corvane::testing
