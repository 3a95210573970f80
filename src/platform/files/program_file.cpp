#include "platform/files/program_file.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

#include "platform/files/directory.h"
#include "platform/files/file_package.h"
#include "platform/paths.h"
#include "text/case.h"

namespace corvane::platform {

namespace {

constexpr std::size_t lookedAtBytes = 4096;

// Documents that may hold macros aren't among them: the programs that show these ask for themselves.
constexpr auto programExtensions = std::to_array<std::string_view>({"action",      "apk",
                                                                    "app",         "appimage",
                                                                    "applescript", "application",
                                                                    "appref-ms",   "appx",
                                                                    "ash",         "bash",
                                                                    "bat",         "bin",
                                                                    "bundle",      "chm",
                                                                    "class",       "cmd",
                                                                    "com",         "command",
                                                                    "component",   "configprofile",
                                                                    "cpl",         "csh",
                                                                    "dash",        "deb",
                                                                    "desktop",     "dex",
                                                                    "diagcab",     "directory",
                                                                    "dll",         "dmg",
                                                                    "dylib",       "ear",
                                                                    "elf",         "exe",
                                                                    "fileloc",     "fish",
                                                                    "flatpak",     "flatpakref",
                                                                    "flatpakrepo", "framework",
                                                                    "ftploc",      "gadget",
                                                                    "hta",         "inetloc",
                                                                    "inf",         "ins",
                                                                    "iso",         "jar",
                                                                    "jnlp",        "job",
                                                                    "js",          "jse",
                                                                    "jsx",         "kext",
                                                                    "ko",          "ksh",
                                                                    "library-ms",  "lnk",
                                                                    "lua",         "mde",
                                                                    "mdimporter",  "mobileconfig",
                                                                    "mount",       "mpkg",
                                                                    "msc",         "msi",
                                                                    "msix",        "msp",
                                                                    "mst",         "networkconnect",
                                                                    "osax",        "out",
                                                                    "pex",         "php",
                                                                    "pif",         "pkg",
                                                                    "pl",          "plugin",
                                                                    "prefpane",    "ps1",
                                                                    "psc1",        "psd1",
                                                                    "psm1",        "py",
                                                                    "pyc",         "pyo",
                                                                    "pyw",         "pyz",
                                                                    "qlgenerator", "rb",
                                                                    "reg",         "rpm",
                                                                    "run",         "saver",
                                                                    "scf",         "scpt",
                                                                    "scptd",       "scr",
                                                                    "sct",         "search-ms",
                                                                    "service",     "settingcontent-ms",
                                                                    "sh",          "shb",
                                                                    "shortcut",    "shs",
                                                                    "snap",        "so",
                                                                    "swf",         "tcl",
                                                                    "tcsh",        "terminal",
                                                                    "theme",       "tool",
                                                                    "url",         "vb",
                                                                    "vbe",         "vbs",
                                                                    "vhd",         "vhdx",
                                                                    "war",         "wdgt",
                                                                    "webloc",      "workflow",
                                                                    "ws",          "wsc",
                                                                    "wsf",         "wsh",
                                                                    "xbap",        "xpc",
                                                                    "xpi",         "zsh"});

static_assert(std::ranges::is_sorted(programExtensions));

constexpr auto magics = std::to_array<std::string_view>({
    "\x7f"
    "ELF",
    "#!",
    "\xFE\xED\xFA\xCE", // Mach-O in either order of bytes, 32 and 64 bit
    "\xFE\xED\xFA\xCF", "\xCE\xFA\xED\xFE", "\xCF\xFA\xED\xFE",
    "\xCA\xFE\xBA\xBE", // one for several machines, and Java
    "\xBE\xBA\xFE\xCA",
    "!<arch>\n",        // a package of Debian
    "\xED\xAB\xEE\xDB", // of Red Hat
    "xar!",             // of macOS
});

std::string_view withoutEnd(std::string_view name) {
    const std::size_t last = name.find_last_not_of(". \t\r\n");
    return last == std::string_view::npos ? std::string_view() : name.substr(0, last + 1);
}

bool hasDesktopEntry(std::string_view bytes) {
    const std::size_t at = bytes.find("[Desktop Entry]");
    return at != std::string_view::npos && (at == 0 || bytes[at - 1] == '\n' || at == 3);
}

} // namespace

bool isProgramName(std::string_view name) {
    const std::string extension = text::asciiLowercased(pathExtension(withoutEnd(name)));
    return std::ranges::binary_search(programExtensions, extension);
}

bool beginsLikeProgram(std::string_view firstBytes) {
    const auto isStart = [&](std::string_view magic) { return firstBytes.starts_with(magic); };
    if (std::ranges::any_of(magics, isStart) || hasDesktopEntry(firstBytes)) return true;
    // Of Windows and DOS; a text may begin with the same two letters.
    return firstBytes.starts_with("MZ") && firstBytes.find('\0') != std::string_view::npos;
}

bool mayBeProgram(const std::string& path) {
    if (isDirectory(path)) return !isPlainFolder(path);
    const auto start = readFilePrefix(path, lookedAtBytes);
    if (!start || isProgramName(lastPathComponent(path)) || beginsLikeProgram(*start)) return true;
    // Disks without permissions show every file as executable.
    return pathExtension(path).empty() && isExecutableFile(path);
}

} // namespace corvane::platform
