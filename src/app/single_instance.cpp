#include "app/single_instance.h"

#include <string>

#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>
#include <QStringList>
#include <QSysInfo>
#include <QTimer>

#include "platform/files/writing/private_files.h"
#include "platform/processes/peer_user.h"
#include "records/stores/app_support.h"

namespace corvane {

namespace {

constexpr int patienceMilliseconds = 3000;
constexpr qint64 longestAddress = 8192;
// Less than any system has room for.
constexpr qsizetype longestSocketPath = 100;
const QByteArray accepted = "ok\n";

// Where the socket may lie, in the order of preference; nobody but the user can put anything there. The last
// one is for a home with a long path and without a runtime folder.
QStringList socketFolders(const QString& supportFolder) {
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    QStringList folders;
    if (QDir::isAbsolutePath(runtime)) folders += runtime + QStringLiteral("/corvane");
    folders += supportFolder;
    folders += QDir::tempPath() + QStringLiteral("/corvane-%1").arg(::geteuid());
    return folders;
}

// Empty where there is no place: then later starts can only say that this one is there.
QString socketPathFor(const QString& supportFolder) {
    const QByteArray hash =
        QCryptographicHash::hash(supportFolder.toUtf8(), QCryptographicHash::Sha256).toHex().left(16);
    for (const QString& folder : socketFolders(supportFolder)) {
        QString path = folder + QStringLiteral("/corvane-") + QString::fromLatin1(hash);
        if (QFile::encodeName(path).size() <= longestSocketPath &&
            platform::makeOwnFolder(QFile::encodeName(folder).toStdString()))
            return path;
    }
    return {};
}

// Reads one line and answers it; the socket goes with its connection, or when it sends nothing.
void answer(QLocalSocket* socket, SingleInstance* instance) {
    QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    if (!platform::isPeerOfSameUser(static_cast<int>(socket->socketDescriptor()))) return socket->abort();
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
  , supportFolder_(supportFolder)
  , lock_(supportFolder + u'/' + QLatin1String(windowLockFileName)) {
    // Held as long as its process lives, however long that is.
    lock_.setStaleLockTime(0);
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&server_, &QLocalServer::newConnection, this, &SingleInstance::serve);
}

bool SingleInstance::tryBecomeFirst() {
    // It may have been out of reach until now.
    const std::string folder = QFile::encodeName(supportFolder_).toStdString();
    if (platform::makePrivateFolder(platform::posixFileLayer(), folder) || !lock_.tryLock()) return false;
    platform::narrowToOwner(QFile::encodeName(lock_.fileName()).toStdString());
    const QString path = socketPathFor(supportFolder_);
    if (path.isEmpty()) return true;
    QLocalServer::removeServer(path);
    server_.listen(path);
    return true;
}

bool SingleInstance::sendToFirst(const QString& address) const {
    QLocalSocket socket;
    const QString path = socketPathFor(supportFolder_);
    if (path.isEmpty()) return false;
    socket.connectToServer(path);
    if (!socket.waitForConnected(patienceMilliseconds)) return false;
    if (!platform::isPeerOfSameUser(static_cast<int>(socket.socketDescriptor()))) return false;
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
