// Keeps the index of all archived mail up to date from the moment that somebody wants it: a program that
// shows no library never makes one. Main thread; an index is made in the background, and the earlier one
// stays until the new one is there, so that a list keeps its content.
#pragma once

#include <functional>
#include <optional>

#include <QObject>

#include "library/library_index.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"

namespace corvane {

class LibraryIndexFlow : public QObject {
    Q_OBJECT

  public:
    using InputsProvider = std::function<LibraryIndexInput()>;

    // `inputs` is asked on the main thread, and gives what is known now.
    LibraryIndexFlow(ModelContext& context, InputsProvider inputs, QObject* parent = nullptr);

    // Never null, and empty before the first one. Its `input()` says of what it was made.
    [[nodiscard]] const SharedLibraryIndex& index() const { return index_; }

    // The index is of what is known now.
    [[nodiscard]] bool isCurrent() const { return index_->input() == inputs_(); }

    // Makes the index where it isn't current; from here on every change of its inputs makes another.
    void rebuildLibraryIndexIfNeeded();

    // The inputs may have changed. No effect as long as nobody wants an index.
    void onInputsChanged();

  Q_SIGNALS:
    void indexChanged();

  private:
    void startBuilding(LibraryIndexInput input);
    void publish(SharedLibraryIndex index, double seconds);

    ModelContext& context_;
    InputsProvider inputs_;
    SharedLibraryIndex index_ = ArchiveLibraryIndex::make({});
    bool isWanted_ = false;
    std::optional<LibraryIndexInput> building_; // of the index that is being made
    TaskSlot buildTask_;
};

} // namespace corvane
