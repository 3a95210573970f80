#include "screens/window_model.h"

namespace corvane {

WindowModel::WindowModel(CorvaneViewModel& model, QObject* parent)
  : QObject(parent)
  , model_(model)
  , mails_(model, desktop_) {}

} // namespace corvane
