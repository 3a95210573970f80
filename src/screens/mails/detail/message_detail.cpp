#include "screens/mails/detail/message_detail.h"

#include <vector>

namespace corvane {

void MessageDetail::show(const MailMessageRecord* message, bool archived, const MessageTrouble& trouble) {
    const bool isSame = message == nullptr ? !message_ : message_ && message_->id == message->id;
    const bool isStateSame = archived_ == archived && trouble_ == trouble;
    if (isSame && isStateSame && (message == nullptr || *message_ == *message)) return;
    message_ = message == nullptr ? std::nullopt : std::optional(*message);
    archived_ = archived;
    trouble_ = trouble;
    if (!isSame) missingPreview_.clear();
    attachments_.setAttachments(message_ ? message_->attachments : std::vector<MailAttachmentRecord>());
    update();
    if (!isSame) Q_EMIT messageChanged();
}

void MessageDetail::setPreviewMissing(const QString& messageID, bool hasFile) {
    if (!message_ || message_->id != messageID.toStdString()) return;
    missingPreview_ = hasFile ? QStringLiteral("没有可以显示的正文。")
                              : QStringLiteral("邮件文件已不在原来的位置，请更新 Mail 数据后再看。");
    update();
}

void MessageDetail::update() {
    shown_ = message_ ? ShownMessage::of(*message_, archived_, missingPreview_) : ShownMessage();
    shown_.troubleTone = trouble_.tone;
    shown_.troubleSymbol = trouble_.symbol;
    shown_.troubleTitle = trouble_.label;
    shown_.troubleText = trouble_.text;
    shown_.isSetAside = trouble_.isSetAside;
    Q_EMIT changed();
}

} // namespace corvane
