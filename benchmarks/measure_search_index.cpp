// The search index of an archive of generated mail: measure_search_index make COUNT HOME | search HOME ROUNDS
// TEXT | again HOME ROUNDS TEXT (after a first search for it) | body HOME ROUNDS | path HOME. They print the
// processor seconds of one round.
#include <cstdio>
#include <ctime>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "platform/platform.h"
#include "search/mail_search_index.h"
#include "search/search_index_files.h"

namespace {

using namespace corvane;

constexpr const char* root = "/bench/archive";
constexpr std::size_t batch = 150;
constexpr std::size_t rowsForOneRareText = 2500;

// Mail as it is: half of it Chinese, words of very different frequency, one closing in nearly all.
class Texts {
  public:
    Texts() {
        for (int i = 0; i < 8000; ++i) {
            std::string word;
            for (std::size_t length = 2 + below(8); length > 0; --length)
                word += static_cast<char>('a' + below(26));
            words_.push_back(word);
        }
    }

    std::string body(std::size_t number) {
        std::string text = number % 2 == 0 ? english(60 + below(340)) : chinese(100 + below(600));
        if (number % 10 != 0) text += "\nSent from my office with kind regards\n";
        if (number % rowsForOneRareText == 0) text += " 罕见词 zebraquark ";
        return text;
    }

    std::string english(std::size_t count) {
        std::string text;
        for (; count > 0; --count) text += words_[skewed(words_.size())] + ' ';
        return text;
    }

    std::string chinese(std::size_t count) {
        std::string text;
        for (; count > 0; --count) {
            const auto scalar = static_cast<unsigned>(0x4E00 + skewed(3000));
            text += static_cast<char>(0xE0 | (scalar >> 12));
            text += static_cast<char>(0x80 | ((scalar >> 6) & 0x3F));
            text += static_cast<char>(0x80 | (scalar & 0x3F));
        }
        return text;
    }

  private:
    std::size_t below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_);
    }

    // Low numbers are frequent.
    std::size_t skewed(std::size_t limit) {
        const double position = std::uniform_real_distribution<>(0, 1)(random_);
        return static_cast<std::size_t>(position * position * position * static_cast<double>(limit));
    }

    std::mt19937 random_{7};
    std::vector<std::string> words_;
};

int make(std::size_t count, MailSearchIndex& index) {
    Texts texts;
    std::vector<SearchIndexRow> rows;
    for (std::size_t number = 0; number < count; ++number) {
        rows.push_back({fmt::format("mid:{}@example.com", number),
                        number % 2 == 0 ? texts.english(6) : texts.chinese(14),
                        fmt::format("sender{}@example.com", number % 300), "me@example.org",
                        number % 5 == 0 ? "report.pdf" : "", texts.body(number)});
        if (rows.size() < batch && number + 1 < count) continue;
        if (index.bulkInsert(rows) != rows.size()) return 1;
        rows.clear();
    }
    return 0;
}

double processorSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

template <class Round>
int measure(long rounds, Round round) {
    const double start = processorSeconds();
    std::size_t found = 0;
    for (long number = 0; number < rounds; ++number) found += round(number);
    std::printf("%.9f\n", (processorSeconds() - start) / static_cast<double>(rounds));
    return found > 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    const std::string mode = argc > 2 ? argv[1] : "";
    const auto platform = platform::makePlatform(mode == "make" ? argv[3] : argv[2]);
    const CorvaneAppSupport support(*platform);
    if (mode == "path") {
        std::printf("%s\n", search::databaseURL(support, root)->path().c_str());
        return 0;
    }
    const auto index = MailSearchIndex::open(support, root);
    if (!index) return 1;
    if (mode == "make") return make(std::stoul(argv[2]), *index);
    if (mode == "again" && argc == 5 && index->search(argv[4]).empty()) return 1;
    if ((mode == "search" || mode == "again") && argc == 5)
        return measure(std::stol(argv[3]), [&](long) { return index->search(argv[4]).size(); });
    if (mode == "body" && argc == 4) {
        return measure(std::stol(argv[3]), [&](long number) {
            return index->body(fmt::format("mid:{}@example.com", number * 7919 % 20000)).has_value() ? 1 : 0;
        });
    }
    return 2;
}
