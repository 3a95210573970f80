#include "records/scan_cache_file.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <tbb/enumerable_thread_specific.h>
#include <tbb/parallel_pipeline.h>

#include "platform/directory.h"
#include "platform/file_descriptor.h"
#include "records/json_outline.h"
#include "records/json_reader.h"
#include "records/json_writer.h"
#include "records/scan_cache_forms.h"

namespace corvane {

namespace {

constexpr std::size_t pieceBytes = std::size_t{1} << 20;
constexpr std::size_t elementsPerPiece = 2048;
constexpr std::size_t piecesInFlight = 6;

// A file mapped for reading, so that its pages count as the system's cache and can go at any time.
class MappedFile {
  public:
    explicit MappedFile(const std::string& path) {
        const platform::FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
        if (!file) throw std::system_error(errno, std::generic_category(), path);
        struct stat info{};
        if (::fstat(file.get(), &info) != 0) throw std::system_error(errno, std::generic_category(), path);
        size_ = static_cast<std::size_t>(info.st_size);
        if (size_ == 0) return;
        address_ = ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, file.get(), 0);
        if (address_ == MAP_FAILED) throw std::system_error(errno, std::generic_category(), path);
        ::madvise(address_, size_, MADV_SEQUENTIAL);
    }

    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    ~MappedFile() {
        if (size_ > 0) ::munmap(address_, size_);
    }

    [[nodiscard]] std::string_view text() const { return {static_cast<const char*>(address_), size_}; }

  private:
    void* address_ = nullptr;
    std::size_t size_ = 0;
};

// Decodes the elements of an array in parallel pieces, in order.
template <class T>
std::vector<T> decodeArray(std::string_view array) {
    std::vector<T> whole;
    JsonArrayPieces pieces(array, pieceBytes);
    tbb::enumerable_thread_specific<JsonReader> readers;
    const auto takePiece = [&](tbb::flow_control& control) -> std::string_view {
        if (const auto piece = pieces.next()) return *piece;
        control.stop();
        return {};
    };
    const auto readPiece = [&](std::string_view piece) {
        return std::make_shared<std::vector<T>>(readers.local().readElements<T>(piece));
    };
    const auto append = [&](const std::shared_ptr<std::vector<T>>& piece) {
        std::move(piece->begin(), piece->end(), std::back_inserter(whole));
    };
    tbb::parallel_pipeline(
        piecesInFlight,
        tbb::make_filter<void, std::string_view>(tbb::filter_mode::serial_in_order, takePiece) &
            tbb::make_filter<std::string_view, std::shared_ptr<std::vector<T>>>(tbb::filter_mode::parallel,
                                                                                readPiece) &
            tbb::make_filter<std::shared_ptr<std::vector<T>>, void>(tbb::filter_mode::serial_in_order,
                                                                    append));
    return whole;
}

// Encodes the elements of a list in parallel pieces and hands them to the sink in order.
template <class T>
void encodeArray(const std::vector<T>& list, const platform::ByteSink& sink) {
    std::size_t start = 0;
    const auto takeRange = [&](tbb::flow_control& control) -> std::size_t {
        if (start >= list.size()) control.stop();
        return std::exchange(start, start + elementsPerPiece);
    };
    const auto writeRange = [&](std::size_t first) {
        auto buffer = std::make_shared<rapidjson::StringBuffer>();
        rapidjson::Writer<rapidjson::StringBuffer> writer(*buffer);
        const std::size_t last = std::min(first + elementsPerPiece, list.size());
        for (std::size_t index = first; index < last; ++index) {
            if (index > 0) buffer->Put(',');
            writer.Reset(*buffer);
            json_detail::writeValue<KeyOrder::table>(writer, list[index]);
        }
        return buffer;
    };
    const auto pass = [&](const std::shared_ptr<rapidjson::StringBuffer>& buffer) {
        sink({buffer->GetString(), buffer->GetSize()});
    };
    sink("[");
    tbb::parallel_pipeline(piecesInFlight,
                           tbb::make_filter<void, std::size_t>(tbb::filter_mode::serial_in_order, takeRange) &
                               tbb::make_filter<std::size_t, std::shared_ptr<rapidjson::StringBuffer>>(
                                   tbb::filter_mode::parallel, writeRange) &
                               tbb::make_filter<std::shared_ptr<rapidjson::StringBuffer>, void>(
                                   tbb::filter_mode::serial_in_order, pass));
    sink("]");
}

// Both lists come in the order of the scan, so one walk finds the twins.
void shareIdentifiers(MailScanCache& cache) {
    if (!cache.locallyAvailableMessageIDs) return;
    auto message = cache.messages.begin();
    for (SharedText& id : *cache.locallyAvailableMessageIDs) {
        const auto twin =
            std::find_if(message, cache.messages.end(),
                         [&](const MailMessageRecord& candidate) { return candidate.id == id; });
        if (twin == cache.messages.end()) return;
        id = twin->id;
        message = std::next(twin);
    }
}

} // namespace

void encodeScanCache(const ScanCacheContent& content, const platform::ByteSink& sink) {
    sink(fmt::format(R"({{"scannedAt":{},"summary":{},"messages":)", encodeJson(content.scannedAt),
                     encodeJson(*content.summary)));
    encodeArray(*content.messages, sink);
    if (content.locallyAvailableMessageIDs != nullptr) {
        sink(R"(,"locallyAvailableMessageIDs":)");
        encodeArray(*content.locallyAvailableMessageIDs, sink);
    }
    if (content.localYearStats != nullptr) {
        sink(fmt::format(R"(,"localYearStats":{})", encodeJson(*content.localYearStats)));
    }
    if (content.localAccountYearStats != nullptr) {
        sink(fmt::format(R"(,"localAccountYearStats":{})", encodeJson(*content.localAccountYearStats)));
    }
    sink("}");
}

MailScanCache decodeScanCache(std::string_view json) {
    std::optional<std::vector<MailMessageRecord>> messages;
    std::optional<std::vector<SharedText>> availableIDs;
    std::string rest = "{";
    JsonObjectOutline outline(json);
    while (const auto member = outline.next()) {
        if (member->key == "messages") {
            messages = decodeArray<MailMessageRecord>(member->value);
        } else if (member->key == "locallyAvailableMessageIDs" && member->value != "null") {
            availableIDs = decodeArray<SharedText>(member->value);
        } else {
            rest.append(rest.size() > 1 ? "," : "").append("\"").append(member->key).append("\":");
            rest.append(member->value);
        }
    }
    if (!messages) throw JsonError("JSON: messages");
    rest += ",\"messages\":[]}";
    auto cache = JsonReader().read<MailScanCache>(rest);
    cache.messages = std::move(*messages);
    cache.locallyAvailableMessageIDs = std::move(availableIDs);
    shareIdentifiers(cache);
    return cache;
}

std::optional<MailScanCache> readScanCacheFile(const std::string& path) {
    if (!platform::fileExists(path)) return std::nullopt;
    const MappedFile file(path);
    return decodeScanCache(file.text());
}

} // namespace corvane
