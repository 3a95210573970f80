// A folder with one .eml file a mail, below the folders of their years. Mail that the folder has already,
// byte for byte, isn't written again; nothing that is there is written over.
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "archive/export/export_names.h"
#include "archive/export/export_target.h"
#include "archive/export/new_file.h"
#include "platform/files/layers/file_layer.h"

namespace corvane::archive {

class FolderTarget final : public ExportTarget {
  public:
    // The folder need not be there. Throws std::system_error when it can't be made.
    FolderTarget(platform::FileLayer& files, std::string folder);

    [[nodiscard]] bool canDropMail() const override { return true; }

    bool begin(const ExportedMail& mail) override;

    void write(std::string_view piece) override { file_->write(piece); }

    void end() override;

    void drop() override { file_.reset(); }

    void finish() override;

  private:
    void beginFolder(const std::string& folder);
    bool holds(const std::string& path, const ExportedMail& mail);

    platform::FileLayer& files_;
    std::string folder_;
    ExportNames names_;
    std::set<std::string> folders_; // those that files were written into
    std::optional<NewFile> file_;
};

} // namespace corvane::archive
