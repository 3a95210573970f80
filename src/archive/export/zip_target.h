// One ZIP file with a .eml file a mail, below folders of their years. Names are UTF-8.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "archive/export/export_names.h"
#include "archive/export/export_target.h"
#include "archive/export/new_file.h"
#include "platform/files/layers/file_layer.h"

namespace corvane::archive {

class ZipTarget final : public ExportTarget {
  public:
    // Throws std::system_error where the path isn't free or can't be written. `beginStep` is called before
    // each piece that finish() unpacks.
    ZipTarget(platform::FileLayer& files, std::string path, std::function<void()> beginStep);
    ~ZipTarget() override;

    [[nodiscard]] bool canDropMail() const override { return false; }

    bool begin(const ExportedMail& mail) override;
    void write(std::string_view piece) override;
    void end() override;

    // Each mail is unpacked again from what lies on the storage.
    void finish() override;

  private:
    struct Writer;

    void verify();

    std::function<void()> beginStep_;
    NewFile file_;
    ExportNames names_;
    std::vector<platform::Sha256Digest> hashes_; // of the mails, in their order
    std::unique_ptr<Writer> writer_;             // goes before the file
};

} // namespace corvane::archive
