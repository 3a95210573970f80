// One mbox file for all mail (mbox_format.h), which Apple Mail imports.
#pragma once

#include <string>
#include <string_view>

#include "archive/export/export_target.h"
#include "archive/export/mbox_format.h"
#include "archive/export/new_file.h"
#include "platform/files/layers/file_layer.h"

namespace corvane::archive {

class MboxTarget final : public ExportTarget {
  public:
    // Throws std::system_error where the path isn't free or can't be written.
    MboxTarget(platform::FileLayer& files, std::string path)
      : file_(files, std::move(path))
      , quoting_([this](std::string_view bytes) { file_.write(bytes); }) {}

    [[nodiscard]] bool canDropMail() const override { return false; }

    bool begin(const ExportedMail& mail) override {
        file_.write(mboxFromLine(mail.record));
        return true;
    }

    void write(std::string_view piece) override { quoting_.add(piece); }

    void end() override { quoting_.end(); }

    void finish() override {
        file_.flush();
        file_.finish();
        file_.syncFolder();
    }

  private:
    NewFile file_;
    MboxQuoting quoting_;
};

} // namespace corvane::archive
