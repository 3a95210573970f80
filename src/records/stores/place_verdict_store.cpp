#include "records/stores/place_verdict_store.h"

#include <string_view>
#include <tuple>

#include "records/json/record_file.h"
#include "records/json/record_forms.h"

namespace corvane {

namespace {

constexpr std::string_view fileName = "place-verdicts.json";

struct VerdictFile {
    std::vector<KeptVerdict> verdicts;
};

} // namespace

template <>
struct JsonForm<KeptVerdict::Finding> {
    using R = KeptVerdict::Finding;
    static constexpr auto fields = std::tuple{jsonField("path", &R::path), jsonField("fault", &R::fault)};
};

template <>
struct JsonForm<KeptVerdict> {
    using R = KeptVerdict;
    static constexpr auto fields = std::tuple{jsonField("root", &R::root),
                                              jsonField("at", &R::at),
                                              jsonField("checked", &R::checked),
                                              jsonField("intact", &R::intact),
                                              jsonField("withoutHash", &R::withoutHash),
                                              jsonField("findings", &R::findings)};
};

template <>
struct JsonForm<VerdictFile> {
    static constexpr auto fields = std::tuple{jsonField("verdicts", &VerdictFile::verdicts)};
};

std::vector<KeptVerdict> PlaceVerdictStore::load() const {
    auto file = readRecordFileIfUsable<VerdictFile>(support_.filePath(fileName));
    return file ? std::move(file->verdicts) : std::vector<KeptVerdict>();
}

void PlaceVerdictStore::save(const std::vector<KeptVerdict>& verdicts) const {
    std::ignore = support_.writeFile(fileName, encodeJson(VerdictFile{verdicts}));
}

} // namespace corvane
