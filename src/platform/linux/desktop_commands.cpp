#include "platform/linux/desktop_commands.h"

#include <fmt/format.h>

namespace corvane::platform {

namespace {

bool isPlain(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           byte == '/' || byte == '.' || byte == '-' || byte == '_' || byte == '~';
}

// Commas are written as bytes too: dbus-send takes them for the border of two addresses.
std::string fileAddress(std::string_view path) {
    std::string address = "file://";
    for (const char byte : path) {
        if (isPlain(byte)) {
            address += byte;
        } else {
            address += fmt::format("%{:02X}", static_cast<unsigned char>(byte));
        }
    }
    return address;
}

} // namespace

ProgramCommand openCommand(const std::string& target) {
    return {"/usr/bin/setsid", {"--fork", desktopOpener, target}};
}

ProgramCommand revealCommand(std::string_view path) {
    return {"/usr/bin/dbus-send",
            {"--session", "--print-reply", "--dest=org.freedesktop.FileManager1",
             "/org/freedesktop/FileManager1", "org.freedesktop.FileManager1.ShowItems",
             "array:string:" + fileAddress(path), "string:"}};
}

} // namespace corvane::platform
