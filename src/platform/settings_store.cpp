#include "platform/settings_store.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string_view>
#include <thread>
#include <tuple>
#include <utility>
#include <variant>

#include <fcntl.h>
#include <sys/file.h>

#include <rapidjson/prettywriter.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <simdjson.h>

#include "platform/files/directory.h"
#include "platform/files/layers/layer_descriptor.h"
#include "platform/files/layers/layer_reading.h"
#include "platform/files/writing/durable_file.h"
#include "platform/files/writing/private_files.h"
#include "platform/paths.h"
#include "text/charsets/charset.h"

namespace corvane::platform {

namespace {

// The JSON text of a value that is no setting of this version: the version that wrote it finds it again.
struct OtherValue {
    std::string json;
};

using TextList = std::vector<std::string>;
using TextMap = std::map<std::string, std::string>;
using Value = std::variant<std::string, TextList, TextMap, OtherValue>;
using Values = std::map<std::string, Value>;
using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

constexpr std::chrono::milliseconds lockPatience(1000);
constexpr std::chrono::milliseconds lockPause(1);
constexpr std::size_t nestingLimit = 64;

std::optional<std::string> textOf(simdjson::dom::element json) {
    std::string_view text;
    if (json.get_string().get(text) != simdjson::SUCCESS) return std::nullopt;
    return std::string(text);
}

std::optional<TextList> listOf(simdjson::dom::array json) {
    TextList list;
    for (const auto element : json) {
        auto text = textOf(element);
        if (!text) return std::nullopt;
        list.push_back(std::move(*text));
    }
    return list;
}

std::optional<TextMap> mapOf(simdjson::dom::object json) {
    TextMap map;
    for (const auto member : json) {
        auto text = textOf(member.value);
        if (!text) return std::nullopt;
        map.emplace(member.key, std::move(*text));
    }
    return map;
}

Value valueOf(simdjson::dom::element json) {
    if (auto text = textOf(json)) return std::move(*text);
    if (json.is_array()) {
        if (auto list = listOf(json.get_array().value_unsafe())) return std::move(*list);
    } else if (json.is_object()) {
        if (auto map = mapOf(json.get_object().value_unsafe())) return std::move(*map);
    }
    return OtherValue{simdjson::minify(json)};
}

// Absent when the text is no JSON object. Of a key that a file edited by hand names twice the first counts.
std::optional<Values> parsedSettings(const std::string& text) {
    simdjson::dom::parser parser;
    simdjson::dom::object members;
    if (parser.allocate(text.size(), nestingLimit) != simdjson::SUCCESS ||
        parser.parse(text).get_object().get(members) != simdjson::SUCCESS)
        return std::nullopt;
    Values values;
    for (const auto member : members) values.emplace(member.key, valueOf(member.value));
    return values;
}

void write(Writer& writer, const std::string& text) {
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void write(Writer& writer, const TextList& list) {
    writer.StartArray();
    for (const auto& text : list) write(writer, text);
    writer.EndArray();
}

void write(Writer& writer, const TextMap& map) {
    writer.StartObject();
    for (const auto& [name, text] : map) {
        write(writer, name);
        write(writer, text);
    }
    writer.EndObject();
}

void write(Writer& writer, const OtherValue& other) {
    rapidjson::StringStream json(other.json.c_str());
    rapidjson::Reader().Parse<rapidjson::kParseFullPrecisionFlag>(json, writer);
}

std::string serialized(const Values& values) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartObject();
    for (const auto& [key, value] : values) {
        write(writer, key);
        std::visit([&](const auto& content) { write(writer, content); }, value);
    }
    writer.EndObject();
    return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

// What tells one content of the file from the next without reading it; absent when there is no file.
using FileStamp = std::optional<std::tuple<dev_t, ino_t, off_t, std::filesystem::file_time_type>>;

FileStamp stampOf(FileLayer& files, const std::string& path) {
    struct stat status{};
    std::error_code ignored;
    if (files.stat(path, status) != 0) return std::nullopt;
    return std::tuple(status.st_dev, status.st_ino, status.st_size,
                      std::filesystem::last_write_time(path, ignored));
}

enum class FileState {
    absent,
    sound,
    damaged,    // it is there and was read, and is no such file
    unreadable, // nobody could look
};

struct FileContent {
    FileState state = FileState::unreadable;
    Values values; // of a sound file
};

// By the errno of a failed open of a regular file.
FileState stateAfter(int errorNumber) {
    if (saysAbsent(errorNumber)) return FileState::absent;
    const bool isNoFile =
        errorNumber == EISDIR || errorNumber == EINVAL || errorNumber == ENXIO || errorNumber == ELOOP;
    return isNoFile ? FileState::damaged : FileState::unreadable;
}

FileContent readSettings(FileLayer& files, const std::string& path) {
    struct stat status{};
    const LayerDescriptor file = openRegularFile(files, path, FinalLink::follow, status);
    if (!file) return {stateAfter(errno), {}};
    std::string text;
    const auto onPiece = [&](std::string_view piece) {
        text += piece;
        return text.size() <= largestSettingsBytes;
    };
    const auto expected = static_cast<std::size_t>(std::min<off_t>(status.st_size, largestSettingsBytes));
    if (readPieces(files, file.get(), expected, onPiece) != 0) return {};
    auto values = text.size() > largestSettingsBytes ? std::nullopt : parsedSettings(text);
    if (!values) return {FileState::damaged, {}};
    return {FileState::sound, std::move(*values)};
}

} // namespace

struct SettingsStore::Document {
    Values values;
    FileStamp stamp;
    FileState state = FileState::absent;

    // Null when there is no value of this type.
    template <class T>
    [[nodiscard]] const T* find(const std::string& key) const {
        const auto found = values.find(key);
        return found == values.end() ? nullptr : std::get_if<T>(&found->second);
    }
};

SettingsStore::SettingsStore(std::string path, FileLayer& files)
  : path_(std::move(path))
  , files_(files)
  , document_(std::make_unique<Document>()) {
    load();
    if (document_->state == FileState::damaged) setAside_ = asidePath();
}

SettingsStore::SettingsStore(SettingsStore&&) noexcept = default;
SettingsStore::~SettingsStore() = default;

// What can't be read leaves the settings as they are known: a file that vanished or broke meanwhile must not
// empty them.
void SettingsStore::load() {
    narrowToOwner(path_);
    document_->stamp = stampOf(files_, path_);
    FileContent content = readSettings(files_, path_);
    document_->state = content.state;
    if (content.state == FileState::sound) document_->values = std::move(content.values);
}

bool SettingsStore::isUnreadable() const {
    return document_->state == FileState::unreadable;
}

std::optional<std::string> SettingsStore::text(const std::string& key) const {
    const auto* value = document_->find<std::string>(key);
    return value == nullptr ? std::nullopt : std::optional(*value);
}

std::optional<std::vector<std::string>> SettingsStore::textList(const std::string& key) const {
    const auto* value = document_->find<TextList>(key);
    return value == nullptr ? std::nullopt : std::optional(*value);
}

std::optional<std::map<std::string, std::string>> SettingsStore::textMap(const std::string& key) const {
    const auto* value = document_->find<TextMap>(key);
    return value == nullptr ? std::nullopt : std::optional(*value);
}

void SettingsStore::setText(const std::string& key, const std::string& value) {
    change([&] { document_->values.insert_or_assign(key, text::repairedUtf8(value)); });
}

void SettingsStore::setTextList(const std::string& key, const std::vector<std::string>& value) {
    TextList list;
    for (const auto& element : value) list.push_back(text::repairedUtf8(element));
    change([&] { document_->values.insert_or_assign(key, std::move(list)); });
}

void SettingsStore::setTextMap(const std::string& key, const std::map<std::string, std::string>& value) {
    TextMap map;
    for (const auto& [name, content] : value)
        map.emplace(text::repairedUtf8(name), text::repairedUtf8(content));
    change([&] { document_->values.insert_or_assign(key, std::move(map)); });
}

void SettingsStore::remove(const std::string& key) {
    change([&] { document_->values.erase(key); });
}

template <typename Edit>
void SettingsStore::change(const Edit& edit) {
    const FileDescriptor lock = lockedFolder();
    reloadIfChanged();
    edit();
    save();
}

// The folder, as the file itself is replaced at each save. Where it can't be locked, or another process holds
// the lock for longer than any save takes, a change is better made than lost.
FileDescriptor SettingsStore::lockedFolder() const {
    const std::string folder(parentPath(resolvedPath(path_).value_or(path_)));
    if (createDirectories(files_, folder)) return {};
    FileDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const auto start = std::chrono::steady_clock::now();
    while (descriptor && ::flock(descriptor.get(), LOCK_EX | LOCK_NB) != 0) {
        const bool isHeld = errno == EWOULDBLOCK || errno == EINTR;
        if (!isHeld || std::chrono::steady_clock::now() - start > lockPatience) return {};
        std::this_thread::sleep_for(lockPause);
    }
    return descriptor;
}

void SettingsStore::reloadIfChanged() {
    if (isUnreadable() || stampOf(files_, path_) != document_->stamp) load();
}

// People keep their configuration elsewhere and link to it; the link then stays.
std::string SettingsStore::asidePath() const {
    return resolvedPath(path_).value_or(path_) + ".damaged";
}

void SettingsStore::save() {
    if (isUnreadable()) {
        saveFailure_ = std::make_error_code(std::errc::io_error);
        return;
    }
    const std::string target = resolvedPath(path_).value_or(path_);
    saveFailure_ = createDirectories(files_, std::string(parentPath(target)));
    if (saveFailure_) return;
    if (document_->state == FileState::damaged && files_.rename(target, asidePath()) != 0) {
        saveFailure_ = {errno, std::generic_category()};
        return;
    }
    document_->state = FileState::sound;
    saveFailure_ = writeFileAtomically(files_, target, serialized(document_->values));
    document_->stamp = stampOf(files_, path_);
}

} // namespace corvane::platform
