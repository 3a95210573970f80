#include "records/logs/append_line.h"

#include <fcntl.h>
#include <unistd.h>

#include "platform/files/file_descriptor.h"
#include "platform/files/file_look.h"
#include "platform/files/writing/private_files.h"

namespace corvane {

bool appendLine(const std::string& path, std::string_view line, MissingFile missing) {
    const int creation = missing == MissingFile::create ? O_CREAT : 0;
    const platform::FileDescriptor file(::open(
        path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC | O_NONBLOCK | creation, platform::privateFileMode));
    if (!file) return false;
    std::string whole(line);
    whole += '\n';
    return ::write(file.get(), whole.data(), whole.size()) == static_cast<ssize_t>(whole.size());
}

// Replacing a file durably takes longer than a quick command otherwise does.
std::error_code emptyLogFile(const CorvaneAppSupport& support, std::string_view name) {
    const platform::FileLook now = platform::lookAtFile(support.filePath(name));
    const bool isEmpty = now.presence == platform::FileLook::Presence::there && now.sizeBytes == 0;
    return isEmpty ? std::error_code() : support.writeFile(name, "");
}

} // namespace corvane
