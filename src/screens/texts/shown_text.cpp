#include "screens/texts/shown_text.h"

#include "records/name_and_address.h"
#include "text/charsets/utf8_step.h"
#include "text/hidden_characters.h"

namespace corvane::screens {

namespace {

bool isLineEnd(char16_t unit) {
    return unit == u'\n' || unit == 0x0085 || unit == 0x2028 || unit == 0x2029;
}

// The byte order mark is no white space, and nobody sees it either.
bool isLeftOut(char16_t unit) {
    return text::isHiddenCharacter(unit) || unit == 0xFEFF;
}

// As many whole characters as `limit` units and some that are taken out can need.
std::string_view headOf(std::string_view text, qsizetype limit) {
    const auto bytes = static_cast<std::size_t>(limit * 2 * U8_MAX_LENGTH);
    return text.size() <= bytes ? text : text::withoutCutCharacter(text.substr(0, bytes));
}

QString cut(QString text, qsizetype limit, bool isShortened) {
    if (text.size() > limit) {
        text.truncate(text.at(limit - 1).isHighSurrogate() ? limit - 1 : limit);
        isShortened = true;
    }
    return isShortened ? text + QChar(0x2026) : text;
}

QString shown(std::string_view text, qsizetype limit, bool keepsLines) {
    const std::string_view head = headOf(text, limit);
    const QString raw = QString::fromUtf8(head.data(), static_cast<qsizetype>(head.size()));
    QString clean;
    clean.reserve(raw.size());
    for (const QChar character : raw) {
        const char16_t unit = character.unicode();
        if (keepsLines && isLineEnd(unit)) {
            clean.append(u'\n');
        } else if (isLineEnd(unit) || unit == u'\t' || unit == u' ') {
            if (keepsLines || (!clean.isEmpty() && clean.back() != u' ')) clean.append(u' ');
        } else if (!isLeftOut(unit)) {
            clean.append(character);
        }
    }
    return cut(keepsLines ? clean : clean.trimmed(), limit, head.size() < text.size());
}

} // namespace

QString shownLine(std::string_view text, qsizetype limit) {
    return shown(text, limit, false);
}

QString shownText(std::string_view text, qsizetype limit) {
    return shown(text, limit, true);
}

QString shownSender(std::string_view sender) {
    const auto parts = nameAndAddress(sender);
    if (!parts || !parts->rest.empty()) return shownLine(sender);
    QString name = shownLine(parts->name);
    if (name.size() >= 2 && name.startsWith(u'"') && name.endsWith(u'"')) {
        name = name.sliced(1, name.size() - 2).trimmed();
    }
    return name.isEmpty() ? shownLine(sender) : name;
}

QString wholeText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace corvane::screens
