#include "screens/window_model.h"

namespace corvane {

WindowModel::WindowModel(CorvaneViewModel& model, QObject* parent)
  : QObject(parent)
  , model_(model) {}

} // namespace corvane
