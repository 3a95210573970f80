#include "platform/settings_store.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string_view>
#include <thread>
#include <tuple>

#include <fcntl.h>
#include <sys/file.h>

#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>

#include "platform/directory.h"
#include "platform/durable_file.h"
#include "platform/paths.h"
#include "text/charset.h"

namespace corvane::platform {

namespace {

// The allocator that frees: the pool of the default one would grow with every change.
using Json = rapidjson::GenericDocument<rapidjson::UTF8<>, rapidjson::CrtAllocator>;
using JsonValue = Json::ValueType;

constexpr std::int64_t sizeLimitBytes = 16 << 20;
constexpr std::chrono::milliseconds lockPatience(1000);
constexpr std::chrono::milliseconds lockPause(1);
constexpr int nestingLimit = 64;
constexpr unsigned parseFlags = rapidjson::kParseIterativeFlag | rapidjson::kParseFullPrecisionFlag |
                                rapidjson::kParseValidateEncodingFlag;

// Stops the reader at a depth that would overflow the stack when the value is written or freed.
class DepthGuard : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, DepthGuard> {
  public:
    bool StartObject() { return ++depth_ <= nestingLimit; }

    bool EndObject(rapidjson::SizeType) { return depth_-- > 0; }

    bool StartArray() { return StartObject(); }

    bool EndArray(rapidjson::SizeType count) { return EndObject(count); }

  private:
    int depth_ = 0;
};

bool isFlatEnough(std::string_view text) {
    rapidjson::MemoryStream stream(text.data(), text.size());
    rapidjson::Reader reader;
    DepthGuard guard;
    return !reader.Parse<parseFlags>(stream, guard).IsError();
}

// Nothing when the text is no JSON object of settings.
std::unique_ptr<Json> parsedSettings(std::string_view text) {
    if (!isFlatEnough(text)) return nullptr;
    auto json = std::make_unique<Json>();
    json->Parse<parseFlags>(text.data(), text.size());
    if (json->HasParseError() || !json->IsObject()) return nullptr;
    return json;
}

std::string textOf(const JsonValue& value) {
    return {value.GetString(), value.GetStringLength()};
}

rapidjson::GenericStringRef<char> referenceTo(std::string_view text) {
    return {text.data(), static_cast<rapidjson::SizeType>(text.size())};
}

JsonValue jsonText(const std::string& text, rapidjson::CrtAllocator& allocator) {
    JsonValue value;
    const std::string repaired = text::repairedUtf8(text);
    value.SetString(repaired.data(), static_cast<rapidjson::SizeType>(repaired.size()), allocator);
    return value;
}

const JsonValue* find(const Json& json, std::string_view key) {
    const auto member = json.FindMember(JsonValue(referenceTo(key)));
    return member == json.MemberEnd() ? nullptr : &member->value;
}

// All of them: a file edited by hand may name a key twice.
void removeAll(Json& json, std::string_view key) {
    const JsonValue name(referenceTo(key));
    while (json.RemoveMember(name)) {
    }
}

std::string serialized(const Json& json) {
    std::vector<const JsonValue::Member*> members;
    for (const auto& member : json.GetObject()) members.push_back(&member);
    const auto name = [](const JsonValue::Member* member) {
        return std::string_view(member->name.GetString(), member->name.GetStringLength());
    };
    std::ranges::stable_sort(members, {}, name);
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    writer.StartObject();
    for (const auto* member : members) {
        member->name.Accept(writer);
        member->value.Accept(writer);
    }
    writer.EndObject();
    return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

// What tells one content of the file from the next without reading it; nothing when there is no file.
using FileStamp = std::optional<std::tuple<dev_t, ino_t, off_t, std::filesystem::file_time_type>>;

FileStamp stampOf(FileLayer& files, const std::string& path) {
    struct stat status{};
    std::error_code ignored;
    if (files.stat(path, status) != 0) return std::nullopt;
    return std::tuple(status.st_dev, status.st_ino, status.st_size,
                      std::filesystem::last_write_time(path, ignored));
}

} // namespace

struct SettingsStore::Document {
    std::unique_ptr<Json> json = std::make_unique<Json>(rapidjson::kObjectType);
    FileStamp stamp;
    // The file is there, but its content couldn't be taken over.
    bool isDamaged = false;
};

SettingsStore::SettingsStore(std::string path, FileLayer& files)
  : path_(std::move(path))
  , files_(files)
  , document_(std::make_unique<Document>()) {
    load();
    if (document_->isDamaged) setAside_ = asidePath();
}

SettingsStore::SettingsStore(SettingsStore&&) noexcept = default;
SettingsStore::~SettingsStore() = default;

// What can't be read leaves the settings as they are known: a file that vanished or broke meanwhile must not
// empty them.
void SettingsStore::load() {
    document_->stamp = stampOf(files_, path_);
    const auto content = readFile(path_, sizeLimitBytes);
    auto json = content ? parsedSettings(*content) : nullptr;
    document_->isDamaged = !json && document_->stamp;
    if (json) document_->json = std::move(json);
}

std::optional<std::string> SettingsStore::text(const std::string& key) const {
    const JsonValue* value = find(*document_->json, key);
    if (value == nullptr || !value->IsString()) return std::nullopt;
    return textOf(*value);
}

std::optional<std::vector<std::string>> SettingsStore::textList(const std::string& key) const {
    const JsonValue* value = find(*document_->json, key);
    if (value == nullptr || !value->IsArray()) return std::nullopt;
    std::vector<std::string> list;
    for (const auto& element : value->GetArray()) {
        if (!element.IsString()) return std::nullopt;
        list.push_back(textOf(element));
    }
    return list;
}

std::optional<std::map<std::string, std::string>> SettingsStore::textMap(const std::string& key) const {
    const JsonValue* value = find(*document_->json, key);
    if (value == nullptr || !value->IsObject()) return std::nullopt;
    std::map<std::string, std::string> map;
    for (const auto& member : value->GetObject()) {
        if (!member.value.IsString()) return std::nullopt;
        map.emplace(textOf(member.name), textOf(member.value));
    }
    return map;
}

void SettingsStore::setText(const std::string& key, const std::string& value) {
    change(key, [&](Json& json) { return jsonText(value, json.GetAllocator()); });
}

void SettingsStore::setTextList(const std::string& key, const std::vector<std::string>& value) {
    change(key, [&](Json& json) {
        JsonValue list(rapidjson::kArrayType);
        for (const auto& element : value) {
            list.PushBack(jsonText(element, json.GetAllocator()), json.GetAllocator());
        }
        return list;
    });
}

void SettingsStore::setTextMap(const std::string& key, const std::map<std::string, std::string>& value) {
    change(key, [&](Json& json) {
        JsonValue map(rapidjson::kObjectType);
        for (const auto& [name, content] : value) {
            map.AddMember(jsonText(name, json.GetAllocator()), jsonText(content, json.GetAllocator()),
                          json.GetAllocator());
        }
        return map;
    });
}

void SettingsStore::remove(const std::string& key) {
    const FileDescriptor lock = lockedFolder();
    reloadIfChanged();
    removeAll(*document_->json, key);
    save();
}

template <typename MakeValue>
void SettingsStore::change(const std::string& key, const MakeValue& makeValue) {
    const FileDescriptor lock = lockedFolder();
    reloadIfChanged();
    Json& json = *document_->json;
    removeAll(json, key);
    JsonValue value = makeValue(json);
    json.AddMember(jsonText(key, json.GetAllocator()), value, json.GetAllocator());
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
    if (stampOf(files_, path_) != document_->stamp) load();
}

// People keep their configuration elsewhere and link to it; the link then stays.
std::string SettingsStore::asidePath() const {
    return resolvedPath(path_).value_or(path_) + ".damaged";
}

void SettingsStore::save() {
    const std::string target = resolvedPath(path_).value_or(path_);
    if (createDirectories(files_, std::string(parentPath(target)))) return;
    if (document_->isDamaged && files_.rename(target, asidePath()) != 0) return;
    document_->isDamaged = false;
    std::ignore = writeFileAtomically(files_, target, serialized(*document_->json));
    document_->stamp = stampOf(files_, path_);
}

} // namespace corvane::platform
