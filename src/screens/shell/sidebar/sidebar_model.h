// The places of the window that have a screen, in their order, each with its figure. Main thread. Figures
// change at most once a second, so that a running scan doesn't flicker.
#pragma once

#include <vector>

#include <QAbstractListModel>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include "screens/texts/window_places.h"

namespace corvane {

class SidebarModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")

  public:
    enum Role { KeyRole = Qt::UserRole, TitleRole, SymbolRole, FigureRole, NumberRole };

    explicit SidebarModel(QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // What stands beside a place's name; may be empty. No effect for a place that isn't listed.
    void setFigure(SidebarPlace place, const QString& figure);

    // Shows what was set, also where that is sooner than usual.
    void publish();

    // The key of the place that Ctrl and `number` go to; empty where there is none.
    Q_INVOKABLE [[nodiscard]] QString keyOfNumber(int number) const;

  private:
    struct Row {
        SidebarPlace place = SidebarPlace::home;
        QString figure;
        QString shownFigure;
    };

    std::vector<Row> rows_;
    QTimer pause_;
};

} // namespace corvane
