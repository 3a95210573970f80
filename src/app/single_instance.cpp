#include "app/single_instance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QSysInfo>
#include <QTimer>

#include "records/stores/app_support.h"

namespace corvane {

namespace {

constexpr int patienceMilliseconds = 3000;
constexpr qint64 longestAddress = 8192;
const QByteArray accepted = "ok\n";

// In the user's own runtime folder: a path below the home may be longer than a socket's may be.
QString socketPathFor(const QString& supportFolder) {
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty()) folder = QDir::tempPath();
    const QByteArray hash =
        QCryptographicHash::hash(supportFolder.toUtf8(), QCryptographicHash::Sha256).toHex().left(16);
    return folder + QStringLiteral("/corvane-") + QString::fromLatin1(hash);
}

// Reads one line and answers it; the socket goes with its connection, or when it sends nothing.
void answer(QLocalSocket* socket, SingleInstance* instance) {
    QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    QTimer::singleShot(patienceMilliseconds, socket, [socket] { socket->abort(); });
    QObject::connect(socket, &QLocalSocket::readyRead, instance, [socket, instance] {
        if (!socket->canReadLine()) {
            if (socket->bytesAvailable() > longestAddress) socket->abort();
            return;
        }
        const QByteArray line = socket->readLine(longestAddress);
        socket->write(accepted);
        socket->disconnectFromServer();
        Q_EMIT instance->requested(QString::fromUtf8(line).trimmed());
    });
}

} // namespace

SingleInstance::SingleInstance(const QString& supportFolder, QObject* parent)
  : QObject(parent)
  , lock_(supportFolder + u'/' + QLatin1String(windowLockFileName))
  , socketPath_(socketPathFor(supportFolder)) {
    // Held as long as its process lives, however long that is.
    lock_.setStaleLockTime(0);
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&server_, &QLocalServer::newConnection, this, &SingleInstance::serve);
}

bool SingleInstance::becomeFirst() {
    // It may have been out of reach until now.
    QDir().mkpath(QFileInfo(lock_.fileName()).path());
    if (!lock_.tryLock()) return false;
    QLocalServer::removeServer(socketPath_);
    // Without a server later starts can only say that this one is there.
    server_.listen(socketPath_);
    return true;
}

bool SingleInstance::handOver(const QString& address) const {
    QLocalSocket socket;
    socket.connectToServer(socketPath_);
    if (!socket.waitForConnected(patienceMilliseconds)) return false;
    socket.write(address.toUtf8().left(longestAddress - 1) + '\n');
    if (!socket.waitForBytesWritten(patienceMilliseconds)) return false;
    return socket.waitForReadyRead(patienceMilliseconds) && socket.readAll().startsWith(accepted);
}

QString SingleInstance::obstacle() const {
    if (lock_.error() != QLockFile::LockFailedError) {
        return QStringLiteral("不能写入数据文件夹「%1」。请检查它的权限和所在磁盘的剩余空间。")
            .arg(QFileInfo(lock_.fileName()).path());
    }
    qint64 process = 0;
    QString computer;
    QString program;
    if (!lock_.getLockInfo(&process, &computer, &program) || process == 0)
        return QStringLiteral("Corvane 已经在运行，但没有回应。请先结束它，再重新打开。");
    if (computer != QSysInfo::machineHostName())
        return QStringLiteral("Corvane 正在另一台电脑（%1）上使用这个主目录。请先在那里退出。").arg(computer);
    return QStringLiteral("Corvane 已经在运行，但没有回应（进程 %1）。请先结束它，再重新打开。").arg(process);
}

void SingleInstance::serve() {
    while (QLocalSocket* socket = server_.nextPendingConnection()) answer(socket, this);
}

} // namespace corvane
