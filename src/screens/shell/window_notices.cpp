#include "screens/shell/window_notices.h"

#include <utility>

#include "model/unkept_data.h"
#include "screens/controls/theme/fonts.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

WindowNotices::WindowNotices(ModelContext& context, QObject* parent)
  : QObject(parent)
  , context_(context) {
    // All that is kept is written by jobs.
    connect(&context.tasks, &TaskRunner::idle, this, &WindowNotices::update);
}

bool WindowNotices::hasChineseFont() const {
    return corvane::hasChineseFont();
}

QString WindowNotices::damagedSettings() const {
    const auto& path = context_.settings.setAside();
    if (!path) return {};
    return screens::shownPath(screens::wholeText(*path),
                              screens::wholeText(context_.platform.realUserHomeDirectory()));
}

void WindowNotices::update() {
    QString text = screens::wholeText(unkeptText(context_));
    if (text == unkept_) return;
    unkept_ = std::move(text);
    Q_EMIT unkeptChanged();
}

} // namespace corvane
