// What a mail worker answers.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "records/json/json_writer.h"
#include "text/charset.h"
#include "worker/mail_worker_client.h"
#include "worker/worker_forms.h"

using namespace corvane;

namespace {

void require(bool condition) {
    if (!condition) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const auto response = MailWorkerClient::decodeResponse({reinterpret_cast<const char*>(data), size});
        require(response.ok);
        // What was understood can be said again and is understood as the same.
        const std::string again = encodeJson(response);
        require(encodeJson(MailWorkerClient::decodeResponse(again)) == again);
    } catch (const WorkerError& error) {
        require(text::isValidUtf8(error.errorDescription()));
    }
    return 0;
}
