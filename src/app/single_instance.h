// One window a home: a second start asks the first one to come forward and ends. The lock, not the
// connection, decides who is first, so two starts at one moment can't both be, and a killed program leaves
// nothing in the way. The socket lies in a folder of this user alone, and both ends look whose process the
// other one is. Main thread.
#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>
#include <QString>

namespace corvane {

class SingleInstance : public QObject {
    Q_OBJECT

  public:
    // `supportFolder` stands for the home; becoming the first makes it where it is missing.
    explicit SingleInstance(const QString& supportFolder, QObject* parent = nullptr);

    // From here on this is the one for its home, until the object goes. False when another one is.
    bool tryBecomeFirst();

    // Asks the other one to come forward and, where it isn't empty, to open an address. False when it doesn't
    // answer. Waits for at most some seconds; any thread.
    [[nodiscard]] bool sendToFirst(const QString& address) const;

    // Why this one couldn't become the first, for the user.
    [[nodiscard]] QString obstacle() const;

  Q_SIGNALS:
    // A second start; its address may be empty.
    void requested(const QString& address);

  private:
    void serve();

    QString supportFolder_;
    QLockFile lock_;
    QLocalServer server_;
};

} // namespace corvane
