#include "archive/export/zip_target.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <exception>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

#include <archive.h>
#include <archive_entry.h>
#include <fmt/format.h>

#include "platform/utf8_locale.h"

namespace corvane::archive {

namespace {

using PackedReader = std::unique_ptr<::archive, decltype(&archive_read_free)>;
using Entry = std::unique_ptr<archive_entry, decltype(&archive_entry_free)>;

constexpr mode_t modeOfMail = 0644;

std::runtime_error damaged() {
    return std::runtime_error("写入后读回的 ZIP 内容与邮件不一致");
}

} // namespace

// libarchive calls back in C: an exception waits here until its call has returned.
struct ZipTarget::Writer {
    explicit Writer(NewFile& output)
      : file(output)
      , packed(archive_write_new(), archive_write_free)
      , entry(archive_entry_new(), archive_entry_free) {
        check(archive_write_set_format_zip(packed.get()));
        // What the disk gets is gathered by the file itself.
        check(archive_write_set_bytes_per_block(packed.get(), 0));
        check(archive_write_open(packed.get(), this, nullptr, &Writer::onWrite, nullptr));
    }

    static la_ssize_t onWrite(::archive* packed, void* self, const void* bytes, std::size_t count) {
        auto& writer = *static_cast<Writer*>(self);
        try {
            if (!writer.isGivenUp) writer.file.write({static_cast<const char*>(bytes), count});
            return static_cast<la_ssize_t>(count);
        } catch (const std::exception&) {
            writer.failure = std::current_exception();
            archive_set_error(packed, EIO, "write");
            return -1;
        }
    }

    void check(la_ssize_t result) {
        if (failure) std::rethrow_exception(std::exchange(failure, nullptr));
        if (result >= ARCHIVE_OK || result == ARCHIVE_WARN) return;
        const char* const text = archive_error_string(packed.get());
        throw std::runtime_error(fmt::format("无法写入 ZIP：{}", text != nullptr ? text : "未知错误"));
    }

    NewFile& file;
    std::exception_ptr failure;
    bool isGivenUp = false; // closing writes nothing any more
    std::unique_ptr<::archive, decltype(&archive_write_free)> packed;
    Entry entry;
};

ZipTarget::ZipTarget(platform::FileLayer& files, std::string path, std::function<void()> beginStep)
  : beginStep_(std::move(beginStep))
  , file_(files, std::move(path)) {
    const platform::Utf8Locale locale; // or names aren't marked as UTF-8
    writer_ = std::make_unique<Writer>(file_);
}

ZipTarget::~ZipTarget() {
    if (writer_) writer_->isGivenUp = true;
}

bool ZipTarget::begin(const ExportedMail& mail) {
    const platform::Utf8Locale locale;
    archive_entry* const entry = archive_entry_clear(writer_->entry.get());
    archive_entry_set_pathname(entry, names_.next(mail.record).c_str());
    archive_entry_set_filetype(entry, AE_IFREG);
    archive_entry_set_perm(entry, modeOfMail);
    archive_entry_set_size(entry, mail.bytes);
    const Date date = mail.record.date.value_or(mail.record.archivedAt);
    archive_entry_set_mtime(entry, date.time_since_epoch().count(), 0);
    writer_->check(archive_write_header(writer_->packed.get(), entry));
    hashes_.push_back(mail.hash);
    return true;
}

void ZipTarget::write(std::string_view piece) {
    while (!piece.empty()) {
        const la_ssize_t written = archive_write_data(writer_->packed.get(), piece.data(), piece.size());
        writer_->check(written);
        if (written < 1) throw damaged();
        piece.remove_prefix(static_cast<std::size_t>(written));
    }
}

void ZipTarget::end() {
    writer_->check(archive_write_finish_entry(writer_->packed.get()));
}

void ZipTarget::finish() {
    {
        const platform::Utf8Locale locale;
        writer_->check(archive_write_close(writer_->packed.get()));
        writer_.reset();
    }
    file_.flush();
    verify();
    file_.finish();
    file_.syncFolder();
}

void ZipTarget::verify() {
    if (hashes_.empty()) return; // libarchive takes a ZIP without entries for none
    const platform::Utf8Locale locale;
    const PackedReader packed(archive_read_new(), archive_read_free);
    archive_read_support_format_zip_seekable(packed.get());
    if (archive_read_open_filename(packed.get(), file_.unfinishedPath().c_str(), 1 << 16) != ARCHIVE_OK)
        throw damaged();
    std::array<char, 1 << 16> buffer{};
    for (const platform::Sha256Digest& expected : hashes_) {
        archive_entry* entry = nullptr;
        if (archive_read_next_header(packed.get(), &entry) != ARCHIVE_OK) throw damaged();
        platform::Sha256 hash;
        la_ssize_t got = 0;
        while ((got = archive_read_data(packed.get(), buffer.data(), buffer.size())) > 0) {
            hash.update({buffer.data(), static_cast<std::size_t>(got)});
            beginStep_();
        }
        if (got < 0 || hash.digest() != expected) throw damaged();
    }
}

} // namespace corvane::archive
