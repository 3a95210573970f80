#include "records/logs/append_line.h"

#include <fcntl.h>
#include <unistd.h>

#include "platform/files/file_descriptor.h"
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

} // namespace corvane
