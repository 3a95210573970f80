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
    Q_PROPERTY(QString refusal READ refusal NOTIFY refusalChanged)

  public:
    enum Role { NameRole = FirstRole, DetailRole, SymbolRole, ChosenRole, ConnectedRole };

    explicit QuickDestinations(CorvaneViewModel& model, QObject* parent = nullptr);

    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] bool hasQuickDestinations() const;

    // Why the place that was pressed last can't be had: the destination stayed as it was. Empty otherwise.
    [[nodiscard]] const QString& refusal() const { return refusal_; }

    void refreshDetectedDestinations();

    // Both make the folder where there is none. It becomes the destination once it was seen that an archive
    // can lie there; else `refusal` says why not.
    Q_INVOKABLE void choose(int row);

    // No effect for an address that is no local file.
    Q_INVOKABLE void chooseFolder(const QUrl& folder);

  Q_SIGNALS:
    void placesChanged();
    void refusalChanged();

  protected:
    [[nodiscard]] QVariant value(const QuickDestination& destination, int role) const override;

  private:
    [[nodiscard]] std::vector<QuickDestination> makeRows() const;
    [[nodiscard]] QuickDestination rowOf(const CloudStorageProvider& place) const;
    [[nodiscard]] std::string archiveFolderIn(const std::string& place) const;
    [[nodiscard]] QuickDestination rowOfFolder(const std::string& path) const;
    void show();
    void use(const std::string& path);
    void setRefusal(const QString& text);

    CorvaneViewModel& model_;
    std::vector<CloudStorageProvider> detectedProviders_;
    std::vector<CloudStorageProvider> detectedVolumes_;
    QString refusal_;
    TaskSlot detectionTask_;
    TaskSlot useTask_;
};

} // namespace corvane
