// Reading an archive's index: what decodes is written back to the same records, and no path of it matters.
#include <cstdint>
#include <string_view>

#include "archive/archive_naming.h"
#include "fuzz_kit.h"
#include "records/archive_files/archive_index_file.h"
#include "records/archived/stable_id.h"

using namespace corvane;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto index = decodeArchiveIndex(fuzz::textOf(data, size));
    if (!index) return 0;
    require(decodeArchiveIndex(encodeArchiveIndex(*index)) == index);
    archive::ArchivePaths paths;
    for (const ArchivedEmailRecord& record : index->records) {
        require(record.id.view().starts_with(baseID(record)));
        paths.markUsed(record.emlRelativePath);
    }
    return 0;
}
