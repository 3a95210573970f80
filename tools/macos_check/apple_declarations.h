// For scripts/check-macos alone, never for a build on a Mac: what this project uses of Apple's frameworks,
// whose headers can't be had elsewhere. Written from their public documentation, as little as the sources
// need. It stands for <CoreFoundation/CoreFoundation.h>, <Foundation/Foundation.h> and <AppKit/AppKit.h>.
#pragma once

#include <stdint.h>

// ---- Core Foundation
// -------------------------------------------------------------------------------------------

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
CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* buffer,
                                                 CFIndex length, Boolean isDirectory);
Boolean CFURLCopyResourcePropertyForKey(CFURLRef url, CFStringRef key, void* value, CFErrorRef* error);
}

// ---- Foundation and AppKit
// -------------------------------------------------------------------------------------

#ifdef __OBJC__
#include <objc/NSObject.h>
#include <objc/objc.h>

@class NSError, NSMenu, NSTimer;

typedef struct {
    unsigned long state;
    id __unsafe_unretained* itemsPtr;
    unsigned long* mutationsPtr;
    unsigned long extra[5];
} NSFastEnumerationState;

@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained[])buffer
                                    count:(NSUInteger)count;
@end

@interface NSString : NSObject
@property(readonly) NSUInteger length;
@property(readonly) const char* UTF8String;
+ (NSString*)stringWithUTF8String:(const char*)bytes;
@end

@interface NSConstantString : NSString
@end

@interface NSArray<__covariant ObjectType> : NSObject <NSFastEnumeration>
@property(readonly) NSUInteger count;
@property(readonly) ObjectType firstObject;
- (NSArray<ObjectType>*)copy;
@end

@interface NSMapTable<KeyType, ObjectType> : NSObject <NSFastEnumeration>
+ (NSMapTable<KeyType, ObjectType>*)weakToStrongObjectsMapTable;
- (ObjectType)objectForKey:(KeyType)key;
- (void)setObject:(ObjectType)object forKey:(KeyType)key;
@end

@interface NSURL : NSObject
+ (NSURL*)fileURLWithPath:(NSString*)path isDirectory:(BOOL)isDirectory;
@end

@interface NSFileManager : NSObject
@property(class, readonly, strong) NSFileManager* defaultManager;
- (NSString*)stringWithFileSystemRepresentation:(const char*)text length:(NSUInteger)length;
- (BOOL)startDownloadingUbiquitousItemAtURL:(NSURL*)url error:(NSError**)error;
@end

@interface NSUserDefaults : NSObject
@property(class, readonly, strong) NSUserDefaults* standardUserDefaults;
- (void)setBool:(BOOL)value forKey:(NSString*)key;
@end

@interface NSTimer : NSObject
+ (NSTimer*)scheduledTimerWithTimeInterval:(double)seconds
                                   repeats:(BOOL)repeats
                                     block:(void (^)(NSTimer* timer))block;
- (void)invalidate;
@end

@interface NSNotificationCenter : NSObject
@property(class, readonly, strong) NSNotificationCenter* defaultCenter;
- (void)addObserver:(id)observer selector:(SEL)selector name:(NSString*)name object:(id)object;
- (void)removeObserver:(id)observer;
@end

extern "C" NSString* NSStringFromSelector(SEL selector);

@protocol NSMenuDelegate <NSObject>
@optional
- (void)menuNeedsUpdate:(NSMenu*)menu;
@end

@interface NSMenuItem : NSObject
@property(copy) NSString* title;
@property SEL action;
@property(weak) id target;
@property(strong) NSMenu* submenu;
@property(assign) NSMenu* menu;
@property(getter=isSeparatorItem, readonly) BOOL separatorItem;
+ (NSMenuItem*)separatorItem;
- (instancetype)initWithTitle:(NSString*)title action:(SEL)action keyEquivalent:(NSString*)key;
@end

@interface NSMenu : NSObject
@property(weak) id<NSMenuDelegate> delegate;
@property(copy) NSArray<NSMenuItem*>* itemArray;
- (void)insertItem:(NSMenuItem*)item atIndex:(NSInteger)index;
- (void)removeItem:(NSMenuItem*)item;
- (void)removeItemAtIndex:(NSInteger)index;
@end

@interface NSApplication : NSObject
@property(strong) NSMenu* mainMenu;
@property(strong) NSMenu* servicesMenu;
@property(strong) NSMenu* windowsMenu;
@property(strong) NSMenu* helpMenu;
@end

extern "C" NSApplication* NSApp;
extern "C" NSString* const NSApplicationDidBecomeActiveNotification;
#endif
