#include "records/archived/presence_signature.h"

#include <string_view>

#include <fmt/format.h>

namespace corvane {

namespace {

constexpr std::uint64_t hashStart = 0xcbf29ce484222325;
constexpr std::uint64_t hashFactor = 0x100000001b3;
constexpr std::string_view idSeparator = "\x01";
constexpr std::string_view fieldSeparator = "\x1F";

// FNV-1a, continued from the hash of what stands before.
std::uint64_t hashed(std::string_view text, std::uint64_t hash) {
    for (const char character : text) hash = (hash ^ static_cast<unsigned char>(character)) * hashFactor;
    return hash;
}

} // namespace

void PresenceSignature::add(const SharedText& root, const ArchivedEmailRecord& record) {
    if (rootHash_ == 0 || !root.sharesWith(root_)) {
        root_ = root;
        rootHash_ = hashed(idSeparator, hashed(root, hashStart));
    }
    const std::uint64_t hash = hashed(fieldSeparator, hashed(record.id, rootHash_));
    sum_ += record.messageIdentifier ? hashed(*record.messageIdentifier, hash) : hash;
    ++count_;
}

void PresenceSignature::add(const PresenceSignature& others) {
    count_ += others.count_;
    sum_ += others.sum_;
}

std::string PresenceSignature::text() const {
    return fmt::format("{}|{}", count_, sum_);
}

} // namespace corvane
