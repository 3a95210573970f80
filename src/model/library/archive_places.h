// Every place at which an archive lies, lay or is to lie: those of the library, those that are known without
// an archive that can be read, and the destination. Main thread; disks are looked at in the background, and
// only when somebody asks.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QObject>

#include "locations/loading/place_states.h"
#include "model/library/library_loader.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"

namespace corvane {

struct ArchivePlace {
    std::string root;
    std::string name; // as it is shown
    ArchiveLocation::Kind kind = ArchiveLocation::Kind::local;
    bool isDefault = false;
    ArchivePlaceState state{};
    bool areFilesGone = false; // it is connected, and none of its mail's files is there
    std::int64_t count = 0;    // of the library's mail
    std::int64_t bytes = 0;
    std::optional<Date> lastSeen{}; // connected, before now; absent when it never was

    friend bool operator==(const ArchivePlace&, const ArchivePlace&) = default;
};

class ArchivePlaces : public QObject {
    Q_OBJECT

  public:
    // The folder of the next run; asked on the main thread.
    using DestinationProvider = std::function<std::optional<std::string>()>;

    // The library must outlive it.
    ArchivePlaces(ModelContext& context, LibraryLoader& library, DestinationProvider destination,
                  QObject* parent = nullptr);

    // As last looked at: the default one first, then connected ones, those out of reach, and those that are
    // gone. Empty before the first look, and where there is none.
    [[nodiscard]] const std::vector<ArchivePlace>& places() const { return places_; }

    [[nodiscard]] bool hasLooked() const { return hasLooked_; }

    // Looks again; `placesChanged` follows.
    void refresh();

  Q_SIGNALS:
    void placesChanged();

  private:
    struct Job;

    static std::vector<ArchivePlace> look(const Job& job, const TaskHandle& task);
    void rememberSeen();

    ModelContext& context_;
    LibraryLoader& library_;
    DestinationProvider destination_;
    std::vector<ArchivePlace> places_;
    bool hasLooked_ = false;
    TaskSlot lookTask_;
};

} // namespace corvane
