// The settings file: whatever it holds, a change gives a file that reads as it was written, values that this
// version doesn't know stay, and a file that couldn't be taken over is kept beside it.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <simdjson.h>

#include "fuzz_kit.h"
#include "platform/settings_store.h"
#include "text/charsets/charset.h"

using namespace corvane;
using fuzz::require;
using platform::SettingsStore;

namespace {

constexpr const char* textKey = "text";
constexpr const char* listKey = "list";
constexpr const char* mapKey = "map";

// The JSON text of each value in one form; of a key that is named twice, the first.
std::map<std::string, std::string> valuesOf(const std::string& json) {
    simdjson::dom::parser parser;
    simdjson::dom::object members;
    require(parser.parse(json).get_object().get(members) == simdjson::SUCCESS);
    std::map<std::string, std::string> values;
    for (const auto member : members) values.emplace(member.key, simdjson::minify(member.value));
    return values;
}

void requireSameValues(const std::map<std::string, std::string>& before,
                       const std::map<std::string, std::string>& after) {
    for (const auto& [key, value] : before) {
        if (key != textKey && key != listKey && key != mapKey) require(after.at(key) == value);
    }
}

void checkChange(const std::string& path, const std::string& bytes) {
    SettingsStore store(path);
    const bool isTakenOver = !store.setAside();
    const std::string value = text::repairedUtf8(bytes);
    store.setText(textKey, bytes);
    store.setTextList(listKey, {bytes, ""});
    store.setTextMap(mapKey, {{bytes, bytes}});
    SettingsStore again(path);
    require(!again.setAside() && again.text(textKey) == value);
    require(again.textList(listKey) == std::vector<std::string>{value, ""});
    require(again.textMap(mapKey).value().at(value) == value);
    if (isTakenOver)
        requireSameValues(valuesOf(bytes), valuesOf(fuzz::readWhole(path)));
    else
        require(fuzz::readWhole(*store.setAside()) == bytes);
}

void checkStill(const std::string& path) {
    const std::string written = fuzz::readWhole(path);
    SettingsStore store(path);
    store.setText(textKey, store.text(textKey).value());
    require(fuzz::readWhole(path) == written);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::FuzzFolder folder;
    static const std::string path = folder.at("settings.json");
    fuzz::writeFile(path, fuzz::textOf(data, size));
    std::filesystem::remove(path + ".damaged");
    checkChange(path, std::string(fuzz::textOf(data, size)));
    checkStill(path);
    return 0;
}
