// Another try at the preview of the selected message, where the scan left none or a garbled one. Main thread;
// files are read in the background, one message at a time: another one cancels the earlier.
#pragma once

#include <functional>
#include <optional>
#include <stop_token>
#include <string>

#include <QObject>

#include "model/mail/messages/message_catalog.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"

namespace corvane {

class PreviewRefresh : public QObject {
    Q_OBJECT

  public:
    // The text of a file, throwing std::exception where the worker can't give it; replaced in tests.
    using WorkerPreview = std::function<std::string(const FileURL& file, const std::stop_token& stop)>;

    PreviewRefresh(ModelContext& context, MessageCatalog& catalog, QObject* parent = nullptr,
                   WorkerPreview workerPreview = {});

    // While they aren't shown, no file is read.
    void setPreviewsShown(bool areShown) { areShown_ = areShown; }

    // Reads the message's files in the background where its preview is damaged; not to be called during a
    // scan. A text that is found takes the place of the preview in the catalog, else `nothingFound` follows.
    void refreshPreviewIfNeeded(const std::optional<std::string>& messageID);

    // Nothing is replaced from here on.
    void cancel();

  Q_SIGNALS:
    // No text can be given for the message; `hasFile` when one of its files is there all the same.
    void nothingFound(const QString& messageID, bool hasFile);

  private:
    ModelContext& context_;
    MessageCatalog& catalog_;
    WorkerPreview workerPreview_;
    bool areShown_ = false;
    std::optional<std::string> refreshingPreviewMessageID_;
    TaskSlot previewRefreshTask_;
};

} // namespace corvane
