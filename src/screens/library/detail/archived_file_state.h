// Whether the file of an archived mail is there: the one rule for all that screens say of it. Main thread.
#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/library/library_loader.h"
#include "records/archived/archive_records.h"

namespace corvane::archived_file {

Q_NAMESPACE
QML_NAMED_ELEMENT(ArchivedFile)

enum class State { Here, Unknown, Unplugged, InCloud, Gone };
Q_ENUM_NS(State)

State stateOf(const LibraryLoader& library, const ArchivedEntry& entry);

} // namespace corvane::archived_file
