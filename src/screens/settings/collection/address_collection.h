// The sheet in which accounts and addresses are put together under one name, with what the group would
// collect. Main thread; the count is made in the background, shortly after the last change. Nothing is stored
// before `save` or `removeGroup`.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <QObject>
#include <QTimer>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include "library/accounts/collection_preview.h"
#include "model/corvane_view_model.h"
#include "screens/settings/collection/collection_rows_model.h"

namespace corvane {

class AddressCollection : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY changed)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY changed)
    Q_PROPERTY(corvane::CollectionRowsModel* accounts READ accounts CONSTANT)
    Q_PROPERTY(corvane::CollectionRowsModel* addresses READ addresses CONSTANT)
    Q_PROPERTY(QString countText READ countText NOTIFY changed)
    Q_PROPERTY(QString sizeText READ sizeText NOTIFY changed)
    // Maps with `title`, `symbol`, `countText` and `share`, 0 to 1 of the largest.
    Q_PROPERTY(QVariantList parts READ parts NOTIFY changed)
    // Maps with `title` and `countText`.
    Q_PROPERTY(QVariantList sources READ sources NOTIFY changed)
    Q_PROPERTY(QString note READ note NOTIFY changed)
    Q_PROPERTY(bool canSave READ canSave NOTIFY changed)
    Q_PROPERTY(bool isExisting READ isExisting NOTIFY changed)

  public:
    // `model` must outlive it.
    explicit AddressCollection(CorvaneViewModel& model, QObject* parent = nullptr);

    [[nodiscard]] bool isOpen() const { return isOpen_; }

    [[nodiscard]] const QString& name() const { return name_; }

    void setName(const QString& name);

    [[nodiscard]] CollectionRowsModel* accounts() { return &accounts_; }

    [[nodiscard]] CollectionRowsModel* addresses() { return &addresses_; }

    // Of what it would collect; "—" while that isn't known.
    [[nodiscard]] QString countText() const;
    [[nodiscard]] QString sizeText() const;
    [[nodiscard]] QVariantList parts() const;
    [[nodiscard]] QVariantList sources() const;

    // Why it can't be saved; empty where it can.
    [[nodiscard]] QString note() const;

    [[nodiscard]] bool canSave() const { return isOpen_ && note().isEmpty(); }

    // The group is there already, and can be removed.
    [[nodiscard]] bool isExisting() const { return !formerName_.empty(); }

    // The key of an account of the library: a group is edited, any other account begins a new one. Empty for
    // a new one without anything in it.
    Q_INVOKABLE void open(const QString& accountKey);
    Q_INVOKABLE void close();

    Q_INVOKABLE void toggleAccount(int row);

    // False, without effect, for what is no address.
    Q_INVOKABLE bool addAddress(const QString& text);
    Q_INVOKABLE void removeAddress(int row);

    // Stores the group and closes; the library shows it then.
    Q_INVOKABLE void save();

    // Takes the group's rules away and closes; its mail stands where it belongs without them.
    Q_INVOKABLE void removeGroup();

  Q_SIGNALS:
    void changed();

  private:
    void handleEdit();
    void count();
    void showPreview(CollectionPreview preview);
    void updateRows();
    [[nodiscard]] bool isNameTaken() const;

    CorvaneViewModel& model_;
    bool isOpen_ = false;
    std::string formerName_; // empty for a new group
    QString name_;
    std::vector<std::string> baseKeys_;
    std::vector<std::string> texts_; // of the addresses, in their order
    CollectionRowsModel accounts_;
    CollectionRowsModel addresses_;
    std::optional<CollectionPreview> preview_; // of an edit before the last one where the count is due
    bool isCountDue_ = false;
    QTimer pause_;
    TaskSlot task_;
};

} // namespace corvane
