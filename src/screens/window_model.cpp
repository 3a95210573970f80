#include "screens/window_model.h"

namespace corvane {

WindowModel::WindowModel(CorvaneViewModel& model, QObject* parent)
  : QObject(parent)
  , model_(model)
  , organizeData_(model)
  , archive_(model, organizeData_, desktop_)
  , home_(model, organizeData_, archive_, desktop_)
  , mails_(model, desktop_) {
    connect(&mails_, &MailListScreen::archiveRequested, &archive_,
            [this](const std::shared_ptr<const SharedTextSet>& ids) { archive_.open(ids); });
}

} // namespace corvane
