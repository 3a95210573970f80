// What the screens say about the archive folder: its name, its symbol, and the remarks that save the user
// from a place that saves no room or isn't there. Pure functions of what the model knows; no disk is touched.
#pragma once

#include <optional>
#include <string>

#include <QMetaType>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include "locations/destination_facts.h"
#include "platform/platform.h"

namespace corvane {

struct DestinationRemark {
    Q_GADGET
    QML_VALUE_TYPE(destinationRemark)
    Q_PROPERTY(QString kind MEMBER kind CONSTANT)
    Q_PROPERTY(QString title MEMBER title CONSTANT)
    Q_PROPERTY(QString text MEMBER text CONSTANT)

  public:
    QString kind; // of the banner control; empty for no remark
    QString title;
    QString text;

    friend bool operator==(const DestinationRemark&, const DestinationRemark&) = default;
};

// What is known of the destination.
struct DestinationView {
    const std::optional<std::string>& path;
    const DestinationFacts& facts;
    const platform::Platform& platform;

    [[nodiscard]] bool isOnRemovableDisk() const {
        return path && platform.removableMountPoint(*path).has_value();
    }

    // A folder that only takes room of this machine.
    [[nodiscard]] bool isPlainLocalFolder() const {
        return path && facts.connected && facts.onInternalDisk && !facts.cloudName;
    }
};

namespace screens {

QString destinationName(const DestinationView& destination);

// Provider or disk, and the folder: "坚果云 · 邮件归档".
QString destinationPlace(const DestinationView& destination);

// What is said below its name: the kind of place and the free space, or what is wrong.
QString destinationLine(const DestinationView& destination);

// A system name of a symbol.
QString destinationSymbol(const DestinationView& destination);

// The remark of the archive sheet; the first that fits.
DestinationRemark archiveRemark(const DestinationView& destination);

// The remark of the home's location bar.
DestinationRemark locationBarRemark(const DestinationView& destination);

} // namespace screens

} // namespace corvane
