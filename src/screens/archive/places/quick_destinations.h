// The places that the archive sheet offers at one press: cloud folders and external disks of this machine,
// folders that were used before, and the present destination. Main thread; the places are looked for in the
// background, since their disks may hang.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include "locations/places/destination_detection.h"
#include "model/corvane_view_model.h"
#include "screens/lists/record_list_model.h"

namespace corvane {

struct QuickDestination {
    std::string path; // of the archive folder that a press chooses
    QString name;
    QString detail;
    QString symbol;
    bool isChosen = false;
    bool isConnected = true;

    friend bool operator==(const QuickDestination&, const QuickDestination&) = default;
};

struct QuickDestinationPath {
    std::string_view operator()(const QuickDestination& destination) const { return destination.path; }
};

class QuickDestinations : public RecordListModel<QuickDestination, QuickDestinationPath> {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the archive sheet")
    Q_PROPERTY(bool hasQuickDestinations READ hasQuickDestinations NOTIFY placesChanged)

  public:
    enum Role { NameRole = FirstRole, DetailRole, SymbolRole, ChosenRole, ConnectedRole };

    explicit QuickDestinations(CorvaneViewModel& model, QObject* parent = nullptr);

    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] bool hasQuickDestinations() const;

    void refreshDetectedDestinations();

    Q_INVOKABLE void choose(int row);

    // No effect for an address that is no local file.
    Q_INVOKABLE void chooseFolder(const QUrl& folder);

  Q_SIGNALS:
    void placesChanged();

  protected:
    [[nodiscard]] QVariant value(const QuickDestination& destination, int role) const override;

  private:
    [[nodiscard]] std::vector<QuickDestination> makeRows() const;
    [[nodiscard]] QuickDestination rowOf(const CloudStorageProvider& place) const;
    [[nodiscard]] std::string archiveFolderIn(const std::string& place) const;
    [[nodiscard]] QuickDestination rowOfFolder(const std::string& path) const;
    void show();

    CorvaneViewModel& model_;
    std::vector<CloudStorageProvider> detectedProviders_;
    std::vector<CloudStorageProvider> detectedVolumes_;
    TaskSlot detectionTask_;
};

} // namespace corvane
