#include "screens/texts/destination_texts.h"

#include "locations/place_names.h"
#include "platform/paths.h"
#include "records/texts/formatters.h"
#include "screens/texts/shown_text.h"

namespace corvane::screens {

namespace {

const QString attention = QStringLiteral("attention");

DestinationRemark unreachableRemark(const DestinationView& destination) {
    return {QStringLiteral("danger"), QStringLiteral("归档位置当前不可用"),
            destination.isOnRemovableDisk()
                ? QStringLiteral(
                      "该位置在未连接的 U 盘 / 外置盘上。请插入该盘，或点「更改」选择其它位置后再归档。")
                : QStringLiteral("找不到这个文件夹。请点「更改」选择其它位置后再归档。")};
}

DestinationRemark symlinkRemark() {
    return {attention,
            {},
            QStringLiteral(
                "这个位置在云盘的快捷方式目录（.symlinks）里，很可能不在同步范围。请把归档放进真正的同步"
                "文件夹（如坚果云的「我的坚果云」）内，否则不会上传到云端。")};
}

} // namespace

QString destinationName(const DestinationView& destination) {
    if (!destination.path) return QStringLiteral("尚未设置");
    return wholeText(destinationDisplayName(destination.platform, *destination.path));
}

QString destinationPlace(const DestinationView& destination) {
    QString name = destinationName(destination);
    if (!destination.path) return name;
    const QString folder = wholeText(platform::lastPathComponent(*destination.path));
    const QString place = destination.facts.cloudName ? wholeText(*destination.facts.cloudName) : name;
    return place == folder ? folder : place + QStringLiteral(" · ") + folder;
}

QString destinationLine(const DestinationView& destination) {
    if (!destination.path) return QStringLiteral("云盘 / U 盘 / 外置硬盘");
    if (!destination.facts.connected) return QStringLiteral("未连接");
    if (destination.facts.cloudName) {
        return wholeText(platform::lastPathComponent(*destination.path)) + QStringLiteral(" · 已连接");
    }
    QString kind = destination.isOnRemovableDisk() ? QStringLiteral("U 盘 / 外置盘") : QStringLiteral("本机");
    if (!destination.facts.availableBytes) return kind;
    return kind + QStringLiteral(" · 可用 ") + wholeText(formatByteCount(*destination.facts.availableBytes));
}

QString destinationSymbol(const DestinationView& destination) {
    if (!destination.path) return QStringLiteral("questionmark.circle");
    if (destination.isOnRemovableDisk()) {
        return destination.facts.connected ? QStringLiteral("externaldrive")
                                           : QStringLiteral("externaldrive.badge.questionmark");
    }
    return destination.facts.cloudName ? QStringLiteral("icloud") : QStringLiteral("folder");
}

DestinationRemark archiveRemark(const DestinationView& destination) {
    if (!destination.path) {
        return {attention, QStringLiteral("尚未设置归档位置"),
                QStringLiteral("请选择云盘同步目录、U 盘或外置硬盘。")};
    }
    if (!destination.facts.connected) return unreachableRemark(destination);
    if (destination.facts.inSymlinkContainer) return symlinkRemark();
    if (destination.isPlainLocalFolder()) {
        return {
            attention,
            {},
            QStringLiteral("这是本机磁盘上的普通文件夹，归档到这里再移动 Mail 原件，并不会真正节省本机空间。"
                           "要节省空间，请选 U 盘 / 外置盘，或坚果云、iCloud 等云同步文件夹。")};
    }
    return {};
}

DestinationRemark locationBarRemark(const DestinationView& destination) {
    if (!destination.path) return {};
    if (!destination.facts.connected) return unreachableRemark(destination);
    if (destination.facts.inSymlinkContainer) return symlinkRemark();
    if (destination.isPlainLocalFolder()) {
        return {attention,
                {},
                QStringLiteral(
                    "这是本机文件夹，把邮件归档到这里、再删掉 Mail 原件，并不会真正省出本机空间。要省空间，"
                    "请改选云盘，或 U 盘 / 外置盘。")};
    }
    return {};
}

} // namespace corvane::screens
