// What is said before mail is removed that may be nowhere else, and the tick that has to be given for it.
// Main thread.
#pragma once

#include <cstddef>

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace corvane {

class OnlyCopyWarning : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the removal")
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString line READ line NOTIFY changed)
    Q_PROPERTY(QString tickTitle READ tickTitle NOTIFY changed)
    Q_PROPERTY(bool ticked READ isTicked WRITE setTicked NOTIFY changed)

  public:
    using QObject::QObject;

    // How many are known to be no longer in Mail, and of how many that isn't known. A tick is for what it was
    // given for: other numbers take it back.
    void show(std::size_t missing, std::size_t unknown);

    void takeBackTick() { setTicked(false); }

    // Nothing that is asked about may be the only copy, or that was ticked.
    [[nodiscard]] bool isAnswered() const { return count() == 0 || isTicked_; }

    // Empty where every original is known to be in Mail.
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString line() const;
    [[nodiscard]] QString tickTitle() const;

    [[nodiscard]] bool isTicked() const { return isTicked_; }

    void setTicked(bool ticked);

  Q_SIGNALS:
    void changed();

  private:
    [[nodiscard]] std::size_t count() const { return missing_ + unknown_; }

    std::size_t missing_ = 0;
    std::size_t unknown_ = 0;
    bool isTicked_ = false;
};

} // namespace corvane
