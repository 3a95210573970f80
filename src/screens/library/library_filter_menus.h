// The filters of the library as the window offers them: three menus with counts, and the strip of years.
// Main thread.
#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include "model/library/library_list_flow.h"
#include "screens/library/library_facets.h"

namespace corvane {

class LibraryFilterMenus : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the library")
    // The first of each is for all; the last account leads to the sheet of address collections.
    Q_PROPERTY(QStringList locations READ locations NOTIFY offerChanged)
    Q_PROPERTY(QStringList accounts READ accounts NOTIFY offerChanged)
    Q_PROPERTY(QStringList mailboxes READ mailboxes NOTIFY offerChanged)
    Q_PROPERTY(int location READ location WRITE setLocation NOTIFY changed)
    Q_PROPERTY(int account READ account WRITE setAccount NOTIFY changed)
    Q_PROPERTY(int mailbox READ mailbox WRITE setMailbox NOTIFY changed)
    // Maps with `year`, `count` and `text`, the year's figures.
    Q_PROPERTY(QVariantList years READ years NOTIFY offerChanged)
    Q_PROPERTY(QString undatedText READ undatedText NOTIFY offerChanged)
    // The chosen years; -1 without a span.
    Q_PROPERTY(int firstYear READ firstYear NOTIFY changed)
    Q_PROPERTY(int lastYear READ lastYear NOTIFY changed)
    Q_PROPERTY(QString spanText READ spanText NOTIFY changed)
    Q_PROPERTY(bool narrows READ narrows NOTIFY changed)

  public:
    // `flow` must outlive it.
    explicit LibraryFilterMenus(LibraryListFlow& flow, QObject* parent = nullptr);

    [[nodiscard]] const QStringList& locations() const { return offer_.locations; }

    [[nodiscard]] const QStringList& accounts() const { return offer_.accounts; }

    [[nodiscard]] const QStringList& mailboxes() const { return offer_.mailboxes; }

    // 0 for all; -1 for one that has no mail any more.
    [[nodiscard]] int location() const;
    [[nodiscard]] int account() const;
    [[nodiscard]] int mailbox() const;

    void setLocation(int row);
    void setAccount(int row);
    void setMailbox(int row);

    [[nodiscard]] const QVariantList& years() const { return offer_.years; }

    // "另有 12 封没有日期"; empty without any.
    [[nodiscard]] const QString& undatedText() const { return offer_.undated; }

    [[nodiscard]] int firstYear() const;
    [[nodiscard]] int lastYear() const;

    // "2020–2021 年".
    [[nodiscard]] QString spanText() const;

    // The list is not all there is.
    [[nodiscard]] bool narrows() const { return flow_.filters() != LibraryFilters(); }

    // The span that is chosen already gives all back.
    Q_INVOKABLE void chooseYears(int first, int last);
    Q_INVOKABLE void clearYears();

    // All filters and the search.
    Q_INVOKABLE void clear();

    void setFacets(LibraryFacets facets);

    [[nodiscard]] const LibraryFacets& facets() const { return facets_; }

  Q_SIGNALS:
    // What is chosen.
    void changed();
    // What there is to choose from. The views make their parts anew for it.
    void offerChanged();
    // Accounts and addresses are to be put together, beginning with the one that is chosen; empty for none.
    void collectionRequested(const QString& accountKey);

  private:
    struct Offer {
        QStringList locations;
        QStringList accounts;
        QStringList mailboxes;
        QVariantList years;
        QString undated;

        friend bool operator==(const Offer&, const Offer&) = default;
    };

    void update();
    [[nodiscard]] Offer makeOffer() const;

    LibraryListFlow& flow_;
    LibraryFacets facets_;
    Offer offer_;
};

} // namespace corvane
