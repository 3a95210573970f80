// Everything that turns bytes of a message or names of the store into text.
#include <cstdint>
#include <set>
#include <string_view>

#include "fuzz_kit.h"
#include "mailstore/folders/mailbox_url.h"
#include "mime/attachment_names.h"
#include "mime/emlx.h"
#include "mime/header_decoding.h"
#include "mime/mail_date.h"
#include "mime/message_identifiers.h"
#include "text/charsets/charset.h"

using namespace corvane;
using fuzz::require;

namespace {

void checkDecoded(std::string_view text) {
    const std::string decoded = mime::decodeHeaderValue(text);
    require(text.find("=?") != std::string_view::npos ? decoded.find('_') == std::string::npos
                                                      : decoded == text);
    // A byte of GB 18030 or ISO Latin 1 gives at most as many bytes of UTF-8 as its encoding had characters.
    require(decoded.size() <= text.size() * 2 + 4);
    require(text::isValidUtf8(decoded) || !text::isValidUtf8(text));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes = fuzz::textOf(data, size);
    checkDecoded(bytes);
    for (const auto& [name, value] : mime::headerText(mime::decodeEmlx(bytes))) {
        require(name.find(':') == std::string::npos);
        require(value.find('\n') == std::string::npos);
        checkDecoded(value);
    }
    mime::decodedHeaderField("subject", bytes);
    mime::looksLikeMojibake(bytes);
    mime::parseMailDate(bytes.substr(0, 200));
    mime::cleanAttachmentName(bytes);
    mailstore::mailboxName(bytes);
    const auto identifiers = mime::normalizedMessageIdentifiers(bytes);
    require(std::set<std::string>(identifiers.begin(), identifiers.end()).size() == identifiers.size());
    return 0;
}
