// The search of the library as its head shows it. Main thread.
#pragma once

#include <string>
#include <vector>

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
    Q_PROPERTY(bool canPrepare READ canPrepare NOTIFY changed)

  public:
    // `library` must outlive it.
    explicit LibrarySearch(LibraryComponents& library, QObject* parent = nullptr);

    // As it was typed. It is searched for after a pause.
    [[nodiscard]] QString query() const;
    void setQuery(const QString& query);

    [[nodiscard]] bool isBusy() const { return library_.list.isSearching(); }

    // Which archives the search couldn't ask, and whose mail isn't prepared for it; empty without any.
    [[nodiscard]] QString note() const;

    // There are such whose mail isn't prepared, and nothing is being prepared.
    [[nodiscard]] bool canPrepare() const;

    // Prepares the mail of all archives in the background; the search is repeated at the end.
    Q_INVOKABLE void prepare();

  Q_SIGNALS:
    void changed();

  private:
    [[nodiscard]] QString placeNames(const std::vector<std::string>& roots) const;

    LibraryComponents& library_;
};

} // namespace corvane
