#include "platform/macos/volume_properties.h"

#include <memory>
#include <utility>
#include <vector>

#include <CoreFoundation/CoreFoundation.h>

// As the compiler calls them for @autoreleasepool.
extern "C" void* objc_autoreleasePoolPush(void);
extern "C" void objc_autoreleasePoolPop(void* pool);

namespace corvane::platform::macos {

namespace {

// Core Foundation may leave objects to the thread's pool, and a thread without one keeps them until it ends.
class AutoreleasePool {
  public:
    AutoreleasePool()
      : pool_(objc_autoreleasePoolPush()) {}

    AutoreleasePool(const AutoreleasePool&) = delete;
    AutoreleasePool& operator=(const AutoreleasePool&) = delete;

    ~AutoreleasePool() { objc_autoreleasePoolPop(pool_); }

  private:
    void* pool_;
};

struct ReleaseObject {
    void operator()(CFTypeRef object) const noexcept { CFRelease(object); }
};

using OwnedObject = std::unique_ptr<const void, ReleaseObject>;

// A fresh one for each question: an address remembers the answers that it got.
OwnedObject addressOf(const std::string& folder) {
    return OwnedObject(CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault,
                                                               reinterpret_cast<const UInt8*>(folder.data()),
                                                               static_cast<CFIndex>(folder.size()), true));
}

// Null where there is no answer, or one of another type.
OwnedObject property(const OwnedObject& address, CFStringRef key, CFTypeID type) {
    CFTypeRef value = nullptr;
    if (!address) return nullptr;
    if (!CFURLCopyResourcePropertyForKey(static_cast<CFURLRef>(address.get()), key, &value, nullptr))
        return nullptr;
    OwnedObject owned(value);
    return owned && CFGetTypeID(value) == type ? std::move(owned) : nullptr;
}

std::optional<bool> truthOf(const OwnedObject& address, CFStringRef key) {
    const OwnedObject value = property(address, key, CFBooleanGetTypeID());
    if (!value) return std::nullopt;
    return CFBooleanGetValue(static_cast<CFBooleanRef>(value.get())) != 0;
}

std::optional<std::string> textOf(const OwnedObject& address, CFStringRef key) {
    const OwnedObject value = property(address, key, CFStringGetTypeID());
    if (!value) return std::nullopt;
    const auto string = static_cast<CFStringRef>(value.get());
    const CFIndex room =
        CFStringGetMaximumSizeForEncoding(CFStringGetLength(string), kCFStringEncodingUTF8) + 1;
    std::vector<char> bytes(static_cast<std::size_t>(room));
    if (!CFStringGetCString(string, bytes.data(), room, kCFStringEncodingUTF8)) return std::nullopt;
    return std::string(bytes.data());
}

} // namespace

VolumeProperties volumeProperties(const std::string& mountPoint) {
    const AutoreleasePool pool;
    const OwnedObject address = addressOf(mountPoint);
    return {.name = textOf(address, kCFURLVolumeNameKey),
            .removable = truthOf(address, kCFURLVolumeIsRemovableKey),
            .ejectable = truthOf(address, kCFURLVolumeIsEjectableKey),
            .internal = truthOf(address, kCFURLVolumeIsInternalKey),
            .browsable = truthOf(address, kCFURLVolumeIsBrowsableKey)};
}

std::optional<std::int64_t> importantFreeBytes(const std::string& existingPath) {
    const AutoreleasePool pool;
    const OwnedObject value = property(
        addressOf(existingPath), kCFURLVolumeAvailableCapacityForImportantUsageKey, CFNumberGetTypeID());
    std::int64_t bytes = 0;
    if (!value || !CFNumberGetValue(static_cast<CFNumberRef>(value.get()), kCFNumberSInt64Type, &bytes))
        return std::nullopt;
    return bytes;
}

} // namespace corvane::platform::macos
