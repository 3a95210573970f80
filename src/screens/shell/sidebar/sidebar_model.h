// The places of the sidebar in their order, each with its figure. Main thread. Figures change at most once a
// second, so that a running scan doesn't flicker.
#pragma once

#include <array>
#include <vector>

#include <QAbstractListModel>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

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

    // Whether the place of that key is to be seen.
    [[nodiscard]] static bool hasScreen(QStringView key);

    // What stands beside a place's name; empty for nothing. A place that isn't shown is ignored.
    void setFigure(QStringView key, const QString& figure);

    // The key of the place that Ctrl and `number` go to; empty where there is none.
    Q_INVOKABLE [[nodiscard]] QString keyOfNumber(int number) const;

  private:
    struct Row {
        int place = 0; // in the table of all places
        QString figure;
        QString shownFigure;
    };

    void publish();

    std::vector<Row> rows_;
    QTimer pause_;
};

} // namespace corvane
