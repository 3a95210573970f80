// For scripts/check-macos alone, never for a build on a Mac: what this project uses of Apple's frameworks, whose
// headers can't be had elsewhere. Written from their public documentation, as little as the sources need. It
// stands for <CoreFoundation/CoreFoundation.h>, <Foundation/Foundation.h> and <AppKit/AppKit.h>.
#pragma once

#include <stdint.h>

// ---- Core Foundation -------------------------------------------------------------------------------------------

extern "C" {

typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFBoolean* CFBooleanRef;
typedef const struct __CFNumber* CFNumberRef;
typedef const struct __CFURL* CFURLRef;
typedef struct __CFError* CFErrorRef;
typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef uint32_t CFStringEncoding;
typedef CFIndex CFNumberType;

enum : CFStringEncoding { kCFStringEncodingUTF8 = 0x08000100 };
enum : CFNumberType { kCFNumberSInt64Type = 4 };

extern const CFAllocatorRef kCFAllocatorDefault;
extern const CFStringRef kCFURLVolumeNameKey;
extern const CFStringRef kCFURLVolumeIsRemovableKey;
extern const CFStringRef kCFURLVolumeIsEjectableKey;
extern const CFStringRef kCFURLVolumeIsInternalKey;
extern const CFStringRef kCFURLVolumeIsBrowsableKey;
extern const CFStringRef kCFURLVolumeAvailableCapacityForImportantUsageKey;

void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);
CFTypeID CFBooleanGetTypeID(void);
CFTypeID CFStringGetTypeID(void);
CFTypeID CFNumberGetTypeID(void);
Boolean CFBooleanGetValue(CFBooleanRef boolean);
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);
CFIndex CFStringGetLength(CFStringRef string);
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding encoding);
CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* buffer, CFIndex length,
                                                 Boolean isDirectory);
Boolean CFURLCopyResourcePropertyForKey(CFURLRef url, CFStringRef key, void* value, CFErrorRef* error);
}

// ---- Foundation and AppKit -------------------------------------------------------------------------------------

#ifdef __OBJC__
#include <objc/NSObject.h>
#include <objc/objc.h>

@class NSArray<ObjectType>;
@class NSError;

@interface NSString : NSObject
- (BOOL)isEqualToString:(NSString*)other;
- (const char*)UTF8String;
+ (instancetype)stringWithUTF8String:(const char*)text;
@end

@interface NSConstantString : NSString
@end

@interface NSURL : NSObject
+ (NSURL*)fileURLWithPath:(NSString*)path isDirectory:(BOOL)isDirectory;
@end

@interface NSFileManager : NSObject
@property(class, readonly, strong) NSFileManager* defaultManager;
- (NSString*)stringWithFileSystemRepresentation:(const char*)text length:(NSUInteger)length;
- (BOOL)startDownloadingUbiquitousItemAtURL:(NSURL*)url error:(NSError**)error;
@end
#endif
