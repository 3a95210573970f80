#include "screens/library/library_actions.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QPointer>
#include <QStringList>
#include <QUrl>

#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

struct CopyJob {
    SharedLibraryList list;
    std::vector<EntryPosition> entries;
};

QString copiedLines(const CopyJob& job, const TaskHandle& task) {
    QStringList lines;
    for (const EntryPosition entry : job.entries) {
        if (task.isCancelled()) return {};
        lines += LibraryRowModel::copiedLine(job.list->index().entry(entry).record);
    }
    return lines.join(u'\n');
}

} // namespace

LibraryActions::LibraryActions(CorvaneViewModel& model, DesktopActions& desktop, LibraryRowModel& rows,
                               LibraryRowSelection& selection, ArchivedMail& mail, RemovalQuestion& removal,
                               QObject* parent)
  : QObject(parent)
  , model_(model)
  , desktop_(desktop)
  , rows_(rows)
  , selection_(selection)
  , mail_(mail)
  , removal_(removal)
  , copyTask_(model.context().tasks) {
    connect(&model.library().mailOpening, &ArchivedMailOpening::ended, this, &LibraryActions::handleOpened);
    connect(&removal, &RemovalQuestion::changed, this, &LibraryActions::changed);
    connect(&selection, &LibraryRowSelection::selectionChanged, this, &LibraryActions::changed);
}

void LibraryActions::openMail() {
    if (!mail_.entry()) return;
    if (mail_.fileState() == archived_file::State::Unplugged) {
        Q_EMIT noticed(mail_.openHelp());
        return;
    }
    model_.library().mailOpening.openArchivedEmail(*mail_.entry());
}

void LibraryActions::handleOpened() {
    const std::string error = model_.library().mailOpening.openArchiveError();
    const std::string& text = error.empty() ? model_.library().mailOpening.openArchiveNote() : error;
    if (!text.empty()) Q_EMIT noticed(screens::shownLine(text));
}

void LibraryActions::revealMail() {
    if (!mail_.entry()) return;
    if (mail_.fileState() == archived_file::State::Here || mail_.fileState() == archived_file::State::Unknown)
        return model_.library().mailOpening.revealArchivedEmail(*mail_.entry());
    Q_EMIT noticed(mail_.state().text);
}

void LibraryActions::findOriginal() {
    if (!mail_.entry()) return;
    model_.library().mailOpening.locateOriginalInMail(
        mail_.entry()->record, [self = QPointer(this)](std::optional<OriginalFailure> failure) {
            if (self && failure) Q_EMIT self->noticed(screens::wholeText(originalFailureText(*failure)));
        });
}

void LibraryActions::copyRows() {
    copyTask_.start(TaskPriority::userInitiated, CopyJob{rows_.content().list, selection_.entries()},
                    &copiedLines, [this](const QString& lines) {
                        if (!lines.isEmpty()) desktop_.copy(lines);
                    });
}

void LibraryActions::copyMail() {
    if (mail_.hasMail()) desktop_.copy(mail_.wholeMail());
}

bool LibraryActions::canRemove() const {
    return selection_.count() > 0 && removal_.step() != RemovalQuestion::Step::Removing;
}

void LibraryActions::removeSelected() {
    // Rows of an index that has been replaced may name what isn't there any more.
    if (!canRemove() || !rows_.isOfPresentIndex()) return;
    removal_.ask(rows_.content().list, selection_.entries());
}

void LibraryActions::openFailureFolder() {
    const QString folder = screens::wholeText(removal_.failureRoot());
    if (folder.isEmpty() || !desktop_.open(QUrl::fromLocalFile(folder)))
        Q_EMIT noticed(QStringLiteral("打不开这个归档的文件夹。"));
}

} // namespace corvane
