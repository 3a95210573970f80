#include "screens/mails/detail/message_detail.h"

#include <utility>

namespace corvane {

void MessageDetail::show(const MailMessageRecord* message, Knowledge knowledge) {
    const bool isSame = message == nullptr ? !message_ : message_ && message_->id == message->id;
    if (isSame && knowledge_ == knowledge && (message == nullptr || *message_ == *message)) return;
    message_ = message == nullptr ? std::nullopt : std::optional(*message);
    knowledge_ = std::move(knowledge);
    if (!isSame) missingPreview_.clear();
    attachments_.setMessage(message_ ? &*message_ : nullptr);
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
    shown_ = message_ ? ShownMessage::of(*message_, knowledge_.archived, missingPreview_) : ShownMessage();
    const MessageTrouble& trouble = knowledge_.trouble;
    shown_.troubleTone = trouble.tone;
    shown_.troubleSymbol = trouble.symbol;
    shown_.troubleTitle = trouble.label;
    shown_.troubleText = trouble.text;
    shown_.hasFailed = trouble.hasFailed;
    shown_.isSetAside = trouble.isSetAside;
    shown_.proofText = knowledge_.proofText;
    Q_EMIT changed();
}

} // namespace corvane
