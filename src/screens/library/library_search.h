// The search of the library as its head shows it. Main thread.
#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"

namespace corvane {

class LibrarySearch : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the library")
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY changed)
    Q_PROPERTY(bool busy READ isBusy NOTIFY changed)
    Q_PROPERTY(QString note READ note NOTIFY changed)

  public:
    // `library` must outlive it.
    explicit LibrarySearch(LibraryComponents& library, QObject* parent = nullptr);

    // As it was typed. It is searched for after a pause.
    [[nodiscard]] QString query() const;
    void setQuery(const QString& query);

    [[nodiscard]] bool isBusy() const { return library_.list.isSearching(); }

    // Which archives the search couldn't ask; empty without any.
    [[nodiscard]] QString note() const;

  Q_SIGNALS:
    void changed();

  private:
    LibraryComponents& library_;
};

} // namespace corvane
