#include "records/stores/archive_index_file.h"

#include "records/json/record_forms.h"
#include "records/stores/archive_index_decoder.h"
#include "records/stores/cache_file.h"

namespace corvane {

std::optional<EmailArchiveIndex> readArchiveIndex(const std::string& path) {
    return readRecordFileIfUsable<EmailArchiveIndex>(path);
}

std::optional<EmailArchiveIndex> decodeArchiveIndex(std::string_view json) {
    ArchiveIndexDecoder decoder;
    decoder.add(json);
    return decoder.finish();
}

std::string encodeArchiveIndex(const EmailArchiveIndex& index) {
    return encodePrettyJson(index);
}

} // namespace corvane
