// Floor of writing a scan cache: the texts of every message, read beforehand, formatted with fmt into a large
// buffer that goes to the file. They are written as they stood in the file, so nothing has to be escaped.
// Usage: floor_scan_cache_write FILE TARGET. Prints the seconds of the writing.
#include <chrono>
#include <cstdio>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <fmt/format.h>
#include <simdjson.h>
#include <unistd.h>

namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;

std::vector<Fields> readMessages(const char* path) {
    const simdjson::padded_string json = simdjson::padded_string::load(path);
    simdjson::ondemand::parser parser;
    simdjson::ondemand::document document = parser.iterate(json);
    std::vector<Fields> messages;
    for (auto element : document.get_object()["messages"].get_array()) {
        Fields& fields = messages.emplace_back();
        for (auto field : element.get_object()) {
            const std::string_view key = field.unescaped_key();
            std::string name(key);
            const std::string_view raw = simdjson::to_json_string(field.value());
            fields.emplace_back(std::move(name), std::string(raw));
        }
    }
    return messages;
}

void flush(int file, fmt::memory_buffer& buffer) {
    if (::write(file, buffer.data(), buffer.size()) != static_cast<ssize_t>(buffer.size()))
        std::perror("write");
    buffer.clear();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const std::vector<Fields> messages = readMessages(argv[1]);
    const auto start = std::chrono::steady_clock::now();
    const int file = ::open(argv[2], O_WRONLY | O_CREAT | O_TRUNC, 0644);
    fmt::memory_buffer buffer;
    fmt::format_to(std::back_inserter(buffer), "{{\"messages\":[");
    for (const Fields& fields : messages) {
        char separator = '{';
        for (const auto& [key, raw] : fields) {
            fmt::format_to(std::back_inserter(buffer), "{}\"{}\":{}", separator, key, raw);
            separator = ',';
        }
        fmt::format_to(std::back_inserter(buffer), "}},");
        if (buffer.size() > 1 << 20) flush(file, buffer);
    }
    flush(file, buffer);
    ::fsync(file);
    ::close(file);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    std::printf("%.6f\n", elapsed.count());
}
