#include "locations/places/cloud_providers.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(CloudProviders, TellTheProviderFromThePathAlone) {
    const struct {
        const char* path;
        const char* name; // "" for none
    } cases[] = {
        {"/Users/me/Nutstore Files/Mail", "坚果云"},
        {"/Users/me/nutSTORE/Mail", "坚果云"},
        {"/Users/me/坚果云/邮件", "坚果云"},
        {"/Users/me/百度网盘/x", "百度网盘"},
        {"/Users/me/ALIPAN/x", "阿里云盘"},
        {"/Users/me/weiyun", "微云"},
        {"/Users/me/Library/Mobile Documents/com~apple~CloudDocs/a", "iCloud 云盘"},
        {"/Users/me/Library/CloudStorage/GoogleDrive-a@b.c/My Drive", "Google Drive"},
        {"/Users/me/Library/CloudStorage/googledrive/x", "Google Drive"},
        {"/Users/me/OneDrive - Firma/x", "OneDrive"},
        {"/Users/me/Dropbox", "Dropbox"},
        {"/Users/me/Library/CloudStorage/pCloudDrive-1/x", "pCloud"},
        {"/Users/me/Seafile/Nextcloud", "Seafile"}, // the order of the table, not of the path
        {"/Users/me/Library/CloudStorage/Box-Box/Mail", "Box"},
        {"/Users/me/Library/CloudStorage/MEGA", "MEGA"},
        {"/Users/me/Library/CloudStorage/", ""},
        {"/Users/me/Library/CloudStorage", ""},
        {"/Users/me/Library/CloudStorage//x", ""},
        {"/Users/me/Documents/Mail", ""},
        {"", ""},
        {"/Users/me/\xff\xfe/Dropbox", "Dropbox"},
    };

    for (const auto& [path, name] : cases) {
        EXPECT_EQ(cloudProviderName(path).value_or(""), name) << path;
    }
    EXPECT_EQ(cloudStorageFolderProviderName("/h/Library/CloudStorage/GOOGLEDRIVE-a/x"), "Google Drive");
    EXPECT_EQ(cloudStorageFolderProviderName("/h/Library/CloudStorage/pclouddrive"), "pCloud");
    EXPECT_EQ(cloudStorageFolderProviderName("/h/Dropbox"), std::nullopt);
}

} // namespace
} // namespace corvane
