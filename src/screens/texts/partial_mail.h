// What the window says of mail that Apple Mail holds only in part: its first parts are on this machine, its
// attachments aren't.
#pragma once

#include <cstdint>

#include <QString>

#include "model/components/mail_components.h"

namespace corvane::screens {

// "另有 846 封在 Mail 里只有一部分，附件没有下载"; empty for 0.
QString partialMailText(std::int64_t count);

// Of the selected accounts.
QString partialMailText(MailComponents& mail);

} // namespace corvane::screens
