// The folder that archive runs write into, and what is to be said of it. Main thread; everything that touches
// the folder happens in the background, since a cloud folder may hang.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <QObject>

#include "model/model_context.h"

namespace corvane {

// What the screens say of a destination.
struct DestinationFacts {
    bool connected = true; // also without a destination: there is no lost disk to warn of
    std::optional<std::string> cloudName;
    std::optional<std::string> filesystemName;
    bool inSymlinkContainer = false;
    bool onInternalDisk = false;
    std::vector<std::string>
        rememberedManualDestinations; // earlier ones on this machine's own disks that exist

    friend bool operator==(const DestinationFacts&, const DestinationFacts&) = default;
};

// Touches disks: background work. `knownRoots` are all places ever used.
DestinationFacts computeDestinationFacts(const platform::Platform& platform,
                                         const std::optional<std::string>& destination,
                                         const std::vector<std::string>& knownRoots);

// The name of a file system type as a person knows it.
std::string shownFileSystemName(std::string_view typeName);

class ArchiveDestinations : public QObject {
    Q_OBJECT

  public:
    // Takes the stored destination.
    explicit ArchiveDestinations(ModelContext& context, QObject* parent = nullptr);

    // Path of the chosen folder.
    [[nodiscard]] const std::optional<std::string>& transferDestination() const { return destination_; }

    // Every archive root ever used, in the order of their first use.
    [[nodiscard]] std::vector<std::string> knownLocationRoots() const;

    [[nodiscard]] const DestinationFacts& facts() const { return facts_; }

    // Stores the choice, then creates the folder in the background; `destinationPrepared` follows.
    void setTransferDestination(const std::string& path);

    // Adds a root to the known ones.
    void rememberLocation(const std::string& path);

    void refreshFacts();

  Q_SIGNALS:
    void destinationChanged();
    void destinationPrepared();
    void factsChanged();

  private:
    ModelContext& context_;
    std::optional<std::string> destination_;
    DestinationFacts facts_;
    TaskSlot prepareTask_;
    TaskSlot factsTask_;
};

} // namespace corvane
