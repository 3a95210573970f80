#include "platform/macos/cloud_download.h"

#import <Foundation/Foundation.h>

namespace corvane::platform::macos {

void startCloudDownload(const std::string& path) {
    @autoreleasepool {
        NSFileManager* const files = [NSFileManager defaultManager];
        NSString* const text = [files stringWithFileSystemRepresentation:path.data() length:path.size()];
        // Of bytes that are no text there is none, and an address of none would end the program.
        if (text.length == 0) return;
        // The wait for the file tells whether it came.
        [files startDownloadingUbiquitousItemAtURL:[NSURL fileURLWithPath:text isDirectory:NO] error:nil];
    }
}

} // namespace corvane::platform::macos
