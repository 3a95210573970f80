// The scan cache read in pieces: never anything but a value or a JsonError, and what is read can be written
// and read again.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz_kit.h"
#include "records/json/json_form.h"
#include "records/json/json_writer.h"
#include "records/stores/scan_cache_forms.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view json = corvane::fuzz::textOf(data, size);
    try {
        const corvane::MailScanCache cache = corvane::decodeScanCache(json);
        corvane::fuzz::require(corvane::decodeScanCache(corvane::encodeJson(cache)) == cache);
    } catch (const corvane::JsonError&) { // what damaged files give
    }
    return 0;
}
