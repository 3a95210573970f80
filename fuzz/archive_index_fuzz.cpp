// Reading an archive's index: what decodes is written back to the same records, and no path of it matters.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "archive/archive_naming.h"
#include "records/stable_id.h"
#include "records/stores/archive_index_file.h"

using namespace corvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto index = decodeArchiveIndex({reinterpret_cast<const char*>(data), size});
    if (!index) return 0;
    if (decodeArchiveIndex(encodeArchiveIndex(*index)) != index) std::abort();
    archive::ArchivePaths paths;
    for (const ArchivedEmailRecord& record : index->records) {
        if (!record.id.view().starts_with(baseID(record))) std::abort();
        paths.markUsed(record.emlRelativePath);
    }
    return 0;
}
