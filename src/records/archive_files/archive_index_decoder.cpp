#include "records/archive_files/archive_index_decoder.h"

#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "records/json/json_object_stream.h"
#include "records/json/json_reader.h"
#include "records/json/record_forms.h"

namespace corvane {

namespace {

constexpr std::string_view recordsKey = "records";
constexpr std::size_t largestRestBytes = std::size_t{1} << 20;

} // namespace

struct ArchiveIndexDecoder::State final : JsonObjectStream::Receiver {
    JsonObjectStream::Wanted wanted(std::string_view key) override {
        if (key == recordsKey) return JsonObjectStream::Wanted::elements;
        const bool isDate = key == "createdAt" || key == "updatedAt";
        // The reader resolves the escapes of a key.
        return isDate || key.find('\\') != std::string_view::npos ? JsonObjectStream::Wanted::whole
                                                                  : JsonObjectStream::Wanted::nothing;
    }

    void beginList(std::string_view key) override {
        records.clear();
        addMember(key, "[]");
    }

    void addElements(std::string_view elements) override {
        auto piece = reader.readElements<ArchivedEmailRecord>(elements);
        std::move(piece.begin(), piece.end(), std::back_inserter(records));
    }

    void addMember(std::string_view key, std::string_view value) override {
        if (rest.size() + key.size() + value.size() > largestRestBytes)
            throw JsonError("JSON: more than an index holds");
        rest.append(rest.size() > 1 ? ",\"" : "\"").append(key).append("\":").append(value);
    }

    EmailArchiveIndex finish() {
        stream.finish();
        auto index = reader.read<EmailArchiveIndex>(rest + '}');
        // Records are there already where the key had escapes.
        if (index.records.empty()) index.records = std::move(records);
        return index;
    }

    JsonObjectStream stream{*this};
    JsonReader reader;
    std::vector<ArchivedEmailRecord> records;
    std::string rest = "{"; // all but the records
    bool isBroken = false;
};

ArchiveIndexDecoder::ArchiveIndexDecoder()
  : state_(std::make_unique<State>()) {}

ArchiveIndexDecoder::ArchiveIndexDecoder(ArchiveIndexDecoder&&) noexcept = default;
ArchiveIndexDecoder& ArchiveIndexDecoder::operator=(ArchiveIndexDecoder&&) noexcept = default;
ArchiveIndexDecoder::~ArchiveIndexDecoder() = default;

void ArchiveIndexDecoder::add(std::string_view piece) {
    if (state_->isBroken) return;
    try {
        state_->stream.add(piece);
    } catch (const JsonError&) {
        state_->isBroken = true;
    }
}

std::optional<EmailArchiveIndex> ArchiveIndexDecoder::finish() {
    if (state_->isBroken) return std::nullopt;
    try {
        return state_->finish();
    } catch (const JsonError&) {
        return std::nullopt;
    }
}

} // namespace corvane
