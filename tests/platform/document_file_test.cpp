#include "platform/files/document_file.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/safe_opening.h"
#include "support/scripted_platform.h"

namespace corvane::platform {
namespace {

using namespace std::string_literals;

struct Case {
    std::string name;
    std::string content;
    bool isProgram = false;
    bool isExecutable = false;
};

TEST(DocumentFile, WhatTheSystemMightRunIsShownAndNeverOpened) {
    const testing::TemporaryHome home;
    const testing::ScriptedPlatform platform(home);
    const std::vector<Case> cases = {
        {"报告.pdf", "%PDF-1.7"},
        {"a.eml", "From: a@b\n\n#!/bin/sh"},
        {"disk without permissions.eml", "From: a@b\n\n", false, true},
        {"MZ.txt", "MZ is the sign of old programs"},
        {"quoted.txt", "see [Desktop Entry] there"},
        {"README", "text", true},
        {"tool", "text", true, true},
        {"page.html", "<p>", true},
        {"holiday.pdf.EXE", "", true},
        {"a.sh. ", "", true},
        {"report.pdf",
         "\x7f"
         "ELF\x02",
         true},
        {"photo.jpg", "#!/usr/bin/env python3\n", true},
        {"letter.doc", "MZ\x90\0\3"s, true},
        {"song.mp3", "\xEF\xBB\xBF[Desktop Entry]\nExec=rm", true},
        {"note.txt", "# comment\n[Desktop Entry]\n", true},
        {"old.txt", "\xCA\xFE\xBA\xBE", true},
        {"link.webloc", "", true},
        {"setup.AppImage", "", true},
    };
    for (const Case& file : cases) {
        const std::string path = home.write("files/" + file.name, file.content);
        if (file.isExecutable) std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        const Opening outcome = openOrShow(platform, path);
        EXPECT_EQ(outcome, file.isProgram ? Opening::shownInFolder : Opening::opened) << file.name;
        EXPECT_EQ(platform.askedOfDesktop().back(), (file.isProgram ? "reveal " : "open ") + path);
    }
    home.write("Tool.app/Contents/Info.plist", "");
    for (const char* const other : {"Tool.app", "not there.txt", "files"})
        EXPECT_FALSE(isDocumentFile(home.at(other)));
}

} // namespace
} // namespace corvane::platform
