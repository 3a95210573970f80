// The beginnings of the messages whose rows are in view, where the scan has left none: read from their files
// in the background, for the rows alone. Main thread.
#pragma once

#include <QObject>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include "model/model_context.h"
#include "model/tasks/task_slot.h"
#include "screens/lists/message_list_model.h"
#include "text/shared_text.h"

namespace corvane {

class RowPreviews : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the mail list")

  public:
    // Both must outlive it.
    RowPreviews(ModelContext& context, MessageListModel& list, QObject* parent = nullptr);

    // The rows from `first` to `last` are in view, once nothing has moved for a moment. Rows that aren't
    // there are left out.
    Q_INVOKABLE void look(int first, int last);

    // The messages are others from here on.
    void forget();

  private:
    struct Job;
    struct Read;

    void read();

    MessageListModel& list_;
    int first_ = 0;
    int last_ = -1;
    SharedTextSet read_; // by message id
    QTimer pause_;
    TaskSlot task_;
};

} // namespace corvane
