#include "records/archive_files/archive_index_decoder.h"

#include <algorithm>
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

// So many records in a row may have gone since without the next ones being missed.
constexpr std::size_t mostSkipped = 32;

// Looks for records among known ones, which are in the same order but for those that came or went.
class KnownOnes {
  public:
    explicit KnownOnes(KnownRecords known)
      : known_(std::move(known)) {}

    // The known one where there is an equal one, else the record itself.
    ArchivedEmailRecord shared(ArchivedEmailRecord record) {
        const std::size_t end = std::min(known_.count, next_ + mostSkipped);
        for (std::size_t i = next_; i < end; ++i) {
            if (known_.at(i).id != record.id) continue;
            next_ = i + 1;
            if (known_.at(i) == record) return known_.at(i);
            break;
        }
        return record;
    }

  private:
    KnownRecords known_;
    std::size_t next_ = 0;
};

} // namespace

struct ArchiveIndexDecoder::State final : JsonObjectStream::Receiver {
    explicit State(KnownRecords earlier)
      : known(std::move(earlier)) {}

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
        for (ArchivedEmailRecord& record : reader.readElements<ArchivedEmailRecord>(elements))
            records.push_back(known.shared(std::move(record)));
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
    KnownOnes known;
    std::vector<ArchivedEmailRecord> records;
    std::string rest = "{"; // all but the records
    bool isBroken = false;
};

std::vector<ArchivedEmailRecord> KnownRecords::all() const {
    std::vector<ArchivedEmailRecord> records;
    records.reserve(count);
    for (std::size_t i = 0; i < count; ++i) records.push_back(at(i));
    return records;
}

ArchiveIndexDecoder::ArchiveIndexDecoder(KnownRecords known)
  : state_(std::make_unique<State>(std::move(known))) {}

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
