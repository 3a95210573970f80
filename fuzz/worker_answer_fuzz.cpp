// What a mail worker answers.
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz_kit.h"
#include "records/json/json_writer.h"
#include "text/charsets/charset.h"
#include "worker/mail_worker_client.h"
#include "worker/worker_forms.h"

using namespace corvane;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const auto response = MailWorkerClient::decodeResponse(std::string(fuzz::textOf(data, size)));
        require(response.ok);
        // What was understood can be said again and is understood as the same.
        const std::string again = encodeJson(response);
        require(encodeJson(MailWorkerClient::decodeResponse(again)) == again);
    } catch (const WorkerError& error) {
        require(text::isValidUtf8(error.errorDescription()));
    }
    return 0;
}
