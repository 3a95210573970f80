// What the window says above every screen about the program's own data and means. Main thread.
#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include "model/model_context.h"

namespace corvane {

class WindowNotices : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")
    Q_PROPERTY(bool hasChineseFont READ hasChineseFont CONSTANT)
    Q_PROPERTY(QString damagedSettings READ damagedSettings CONSTANT)
    Q_PROPERTY(bool hasUnreadableSettings READ hasUnreadableSettings CONSTANT)
    Q_PROPERTY(QString unkept READ unkept NOTIFY unkeptChanged)

  public:
    // `context` must outlive it.
    explicit WindowNotices(ModelContext& context, QObject* parent = nullptr);

    [[nodiscard]] bool hasChineseFont() const;

    // Where settings that couldn't be read at the start are kept, as it is shown; empty when they could.
    [[nodiscard]] QString damagedSettings() const;

    // The settings are there and couldn't be read: they stay as they are, and changes of them aren't kept.
    [[nodiscard]] bool hasUnreadableSettings() const { return context_.settings.isUnreadable(); }

    // What of the program's own data couldn't be kept; empty while everything was.
    [[nodiscard]] const QString& unkept() const { return unkept_; }

    // Looks again for what couldn't be kept.
    void update();

  Q_SIGNALS:
    void unkeptChanged();

  private:
    ModelContext& context_;
    QString unkept_;
};

} // namespace corvane
