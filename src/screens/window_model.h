// What the window shows: one object for each screen over the one application model, and what the frame around
// the screens needs. Main thread. Made by the entry; the QML root gets it as its initial property `app`.
#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"

namespace corvane {

class WindowModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the entry of the program")

  public:
    // `model` must outlive the window's model.
    explicit WindowModel(CorvaneViewModel& model, QObject* parent = nullptr);

  private:
    CorvaneViewModel& model_;
};

} // namespace corvane
