// The folder to which every archive run writes, as the user chose it. Main thread; nothing here touches a
// disk on it, since a cloud folder may hang.
#pragma once

#include <optional>
#include <string>

#include <QObject>
#include <QTimer>

#include "locations/destination_facts.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"

namespace corvane {

class ArchiveDestinations : public QObject {
    Q_OBJECT

  public:
    // Reads the stored choice and remembers it among the known locations.
    explicit ArchiveDestinations(ModelContext& context, QObject* parent = nullptr);

    // Path of the folder, canonical; absent before the first choice.
    [[nodiscard]] const std::optional<std::string>& transferDestination() const { return destination_; }

    enum class Folder {
        made,
        left, // as it is: it may belong on a disk that isn't there
    };

    // Publishes and stores the choice at once and makes the folder in the background; `destinationPrepared`
    // follows. None is made in Mail's folder. A place that was forgotten is known again.
    void setTransferDestination(const std::string& path, Folder folder = Folder::made);

    // There is no destination any more; what lies in the folder stays.
    void clearTransferDestination();

    // As last asked. Right after a choice only what follows from its path.
    [[nodiscard]] const DestinationFacts& facts() const { return facts_; }

    // Asks again in the background; a place out of reach is asked for from then on until it is back.
    void refreshFacts();

  Q_SIGNALS:
    void destinationChanged();
    // The folder has been made, if it could be.
    void destinationPrepared();
    void factsChanged();

  private:
    void setFacts(DestinationFacts facts);

    ModelContext& context_;
    std::optional<std::string> destination_;
    DestinationFacts facts_;
    TaskSlot prepareTask_;
    TaskSlot factsTask_;
    QTimer lookAgain_;
};

} // namespace corvane
