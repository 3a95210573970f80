// What choosing a folder for the archive would come to, as the sheet says it before anybody presses: a folder
// that is taken as it is, one that is made, an archive that is gone on with, or one that had better not be
// taken. A value; pure.
#pragma once

#include <stop_token>
#include <string>

#include <QMetaType>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include "locations/places/folder_facts.h"

namespace corvane {

struct FolderChoice {
    Q_GADGET
    QML_VALUE_TYPE(folderChoice)
    Q_PROPERTY(bool canUse MEMBER canUse CONSTANT)
    Q_PROPERTY(QString note MEMBER note CONSTANT)
    Q_PROPERTY(QString noteLine MEMBER noteLine CONSTANT)
    Q_PROPERTY(QString useText MEMBER useText CONSTANT)
    Q_PROPERTY(QString anywayText MEMBER anywayText CONSTANT)
    Q_PROPERTY(QString warningKind MEMBER warningKind CONSTANT)
    Q_PROPERTY(QString warningTitle MEMBER warningTitle CONSTANT)
    Q_PROPERTY(QString warningText MEMBER warningText CONSTANT)
    Q_PROPERTY(QString proposal MEMBER proposal CONSTANT)

  public:
    bool canUse = false;
    QString note;
    QString noteLine;
    QString useText;      // of the primary button
    QString anywayText;   // of the one that takes the folder in spite of the warning; empty for none
    QString warningKind;  // of a banner; empty for none
    QString warningTitle; // never without a kind
    QString warningText;
    QString proposal; // the name of a folder that would be made in the shown one; empty for none

    std::string path;   // what the primary button takes
    bool makes = false; // it has to be made first

    friend bool operator==(const FolderChoice&, const FolderChoice&) = default;
};

// The folder that is asked about.
struct FolderQuestion {
    std::string path;
    std::string home;
    bool isShown = false; // the one whose folders are listed, not a row in it
};

// What an archive's folder is called that the user didn't name.
inline constexpr const char* proposedFolderName = "邮件归档";

// As long as the folder is being looked into.
FolderChoice awaitedChoice(const FolderQuestion& question);

// As a place for an archive.
FolderChoice folderChoice(const FolderQuestion& question, const FolderFacts& facts);

// The same, with a look into the folder. Blocks.
FolderChoice archiveFolderChoice(const FolderQuestion& question, const std::stop_token& stop);

// What lies in a folder, for its row; empty where it couldn't be looked into.
QString folderInsideText(const std::string& path, const FolderFacts& facts);

} // namespace corvane
