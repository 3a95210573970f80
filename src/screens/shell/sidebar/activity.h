// The long work that runs behind the screens, as the foot of the sidebar shows it: one line at a time, the
// run that the user waits for most. Main thread. It changes at most once a second while the same work runs.
#pragma once

#include <chrono>

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"

namespace corvane {

class Activity : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")
    Q_PROPERTY(bool running READ running NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString figure READ figure NOTIFY changed)
    // 0 to 1.
    Q_PROPERTY(qreal value READ value NOTIFY changed)
    // How much there is to do isn't known.
    Q_PROPERTY(bool indeterminate READ indeterminate NOTIFY changed)
    // The key of the place whose screen shows this work; `placesKey` for the sheet of archive places.
    Q_PROPERTY(QString place READ place NOTIFY changed)

  public:
    // `model` must outlive it. Reading the archive's index mostly takes no time: it is shown only when it
    // lasts longer than `loadPatience`.
    explicit Activity(CorvaneViewModel& model,
                      std::chrono::milliseconds loadPatience = std::chrono::milliseconds(500),
                      QObject* parent = nullptr);

    [[nodiscard]] static QString placesKey() { return QStringLiteral("places"); }

    [[nodiscard]] bool running() const { return !shown_.title.isEmpty(); }

    [[nodiscard]] const QString& title() const { return shown_.title; }

    [[nodiscard]] const QString& figure() const { return shown_.figure; }

    [[nodiscard]] qreal value() const { return shown_.value; }

    [[nodiscard]] bool indeterminate() const { return shown_.indeterminate; }

    [[nodiscard]] const QString& place() const { return shown_.place; }

  Q_SIGNALS:
    void changed();

  private:
    struct State {
        QString title; // empty when nothing runs
        QString figure;
        QString place;
        qreal value = 0;
        bool indeterminate = false;

        friend bool operator==(const State&, const State&) = default;
    };

    [[nodiscard]] State present() const;
    [[nodiscard]] static State placeWork(const PlaceJobs::Job& job);
    [[nodiscard]] bool loadLasts() const;
    void handleLoadStart();
    void update();
    void show(State state);

    CorvaneViewModel& model_;
    State shown_;
    QTimer pause_;
    std::chrono::milliseconds loadPatience_;
    QElapsedTimer loadClock_;
};

} // namespace corvane
