#include "platform/system_menus.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#import <AppKit/AppKit.h>

#include "platform/macos/menu_rules.h"

namespace {

using namespace corvane::platform;

// Empty for no text, and for one that has no such form.
std::string utf8(NSString* text) {
    const char* const bytes = text.UTF8String;
    return bytes == nullptr ? std::string() : std::string(bytes);
}

std::string actionOf(NSMenuItem* item) {
    return item.action == nullptr ? std::string() : utf8(NSStringFromSelector(item.action));
}

macos::MenuItemFacts factsOf(NSMenuItem* item) {
    macos::MenuItemFacts facts{.action = actionOf(item), .title = utf8(item.title)};
    NSMenu* const submenu = item.submenu;
    facts.hasSubmenu = submenu != nil;
    facts.isServicesMenu = submenu != nil && submenu == NSApp.servicesMenu;
    for (NSMenuItem* entry in submenu.itemArray) facts.submenuActions.push_back(actionOf(entry));
    return facts;
}

NSString* textOf(std::string_view utf8Text) {
    return [NSString stringWithUTF8String:std::string(utf8Text).c_str()];
}

// Qt translates its entries only in programs that make a menu bar by it.
void nameItems(NSMenu* applicationMenu) {
    for (NSMenuItem* item in applicationMenu.itemArray) {
        const std::string_view title = macos::titleOf(actionOf(item));
        if (!title.empty() && utf8(item.title) != title) item.title = textOf(title);
    }
}

void pruneNoiseItems(NSMenu* menu) {
    // A copy: the menu changes below.
    for (NSMenuItem* item in [menu.itemArray copy]) {
        if (macos::shouldRemove(factsOf(item))) [menu removeItem:item];
    }
    std::vector<bool> isSeparator;
    for (NSMenuItem* item in menu.itemArray) isSeparator.push_back(item.separatorItem);
    const auto places = macos::superfluousSeparators(isSeparator);
    for (auto place = places.rbegin(); place != places.rend(); ++place)
        [menu removeItemAtIndex:static_cast<NSInteger>(*place)];
}

} // namespace

// Stands before the delegate that a menu had. What the menu asks is answered by that one; then what it may
// have added is removed, before the menu is seen.
@interface CorvaneMenuPruner : NSObject <NSMenuDelegate>
@property(nonatomic, weak) id<NSMenuDelegate> original;
@end

@implementation CorvaneMenuPruner

- (void)menuNeedsUpdate:(NSMenu*)menu {
    if ([self.original respondsToSelector:@selector(menuNeedsUpdate:)]) [self.original menuNeedsUpdate:menu];
    pruneNoiseItems(menu);
}

- (BOOL)respondsToSelector:(SEL)selector {
    return [super respondsToSelector:selector] || [self.original respondsToSelector:selector];
}

- (id)forwardingTargetForSelector:(SEL)selector {
    return [self.original respondsToSelector:selector] ? self.original
                                                       : [super forwardingTargetForSelector:selector];
}

@end

// What an entry of ours does; an entry doesn't own its target.
@interface CorvaneMenuCommand : NSObject {
  @public
    std::function<void()> run;
}
- (void)performMenuCommand:(id)sender;
@end

@implementation CorvaneMenuCommand

- (void)performMenuCommand:(id)sender {
    run();
}

@end

@interface CorvaneMenuPolicy : NSObject
- (void)addCommand:(const MenuCommand&)command;
- (void)enforceMenuPolicy;
- (void)stop;
@property(nonatomic, strong) NSTimer* menuPolicyTimer;
// A menu doesn't own its delegate, so the pruners live here, as long as their menus.
@property(nonatomic, strong) NSMapTable<NSMenu*, CorvaneMenuPruner*>* pruners;
@end

@implementation CorvaneMenuPolicy {
    std::vector<CorvaneMenuCommand*> commands;
    std::vector<NSMenuItem*> commandItems;
}

- (instancetype)init {
    self = [super init];
    if (self == nil) return nil;
    self.pruners = [NSMapTable weakToStrongObjectsMapTable];
    __weak CorvaneMenuPolicy* weakSelf = self;
    // The system fills the menus late, and some of them again whenever the program comes forward.
    self.menuPolicyTimer = [NSTimer scheduledTimerWithTimeInterval:0.3
                                                           repeats:YES
                                                             block:^(NSTimer* timer) {
                                                               CorvaneMenuPolicy* policy = weakSelf;
                                                               if (policy == nil) [timer invalidate];
                                                               [policy enforceMenuPolicy];
                                                             }];
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(enforceMenuPolicy)
                                                 name:NSApplicationDidBecomeActiveNotification
                                               object:nil];
    return self;
}

- (void)addCommand:(const MenuCommand&)command {
    CorvaneMenuCommand* const target = [[CorvaneMenuCommand alloc] init];
    target->run = command.run;
    NSMenuItem* const item =
        [[NSMenuItem alloc] initWithTitle:textOf(command.title)
                                   action:@selector(performMenuCommand:)
                            keyEquivalent:@""];
    item.target = target;
    commands.push_back(target);
    commandItems.push_back(item);
}

// Behind the first entry, which is that about the program. The menu may have been made anew without them.
- (void)insertCommands {
    NSMenu* const menu = NSApp.mainMenu.itemArray.firstObject.submenu;
    if (menu == nil || commandItems.empty() || commandItems.front().menu == menu) return;
    [self removeCommands];
    NSInteger place = menu.itemArray.count > 0 ? 1 : 0;
    [menu insertItem:[NSMenuItem separatorItem] atIndex:place++];
    for (NSMenuItem* item : commandItems) [menu insertItem:item atIndex:place++];
    [menu insertItem:[NSMenuItem separatorItem] atIndex:place];
}

- (void)removeCommands {
    for (NSMenuItem* item : commandItems) [item.menu removeItem:item];
}

- (void)stop {
    [self removeCommands];
    [self.menuPolicyTimer invalidate];
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    for (NSMenu* menu in self.pruners) {
        CorvaneMenuPruner* pruner = [self.pruners objectForKey:menu];
        if (menu.delegate == pruner) menu.delegate = pruner.original;
    }
}

- (void)enforceMenuPolicy {
    [self removeHelpMenu];
    [self insertCommands];
    nameItems(NSApp.mainMenu.itemArray.firstObject.submenu);
    for (NSMenuItem* item in NSApp.mainMenu.itemArray) [self watch:item.submenu];
    [self watch:NSApp.windowsMenu];
}

- (void)removeHelpMenu {
    NSMenu* const help = NSApp.helpMenu;
    for (NSMenuItem* item in [NSApp.mainMenu.itemArray copy]) {
        if (help != nil && item.submenu == help) [NSApp.mainMenu removeItem:item];
    }
    NSApp.helpMenu = nil;
}

- (void)watch:(NSMenu*)menu {
    if (menu == nil) return;
    CorvaneMenuPruner* pruner = [self.pruners objectForKey:menu];
    if (pruner == nil || menu.delegate != pruner) {
        pruner = [[CorvaneMenuPruner alloc] init];
        pruner.original = menu.delegate;
        [self.pruners setObject:pruner forKey:menu];
        menu.delegate = pruner;
    }
    pruneNoiseItems(menu);
}

@end

namespace corvane::platform {

namespace {

class MacosMenuPolicy final : public MenuPolicy {
  public:
    explicit MacosMenuPolicy(const std::vector<MenuCommand>& commands)
      : policy_([[CorvaneMenuPolicy alloc] init]) {
        for (const MenuCommand& command : commands) [policy_ addCommand:command];
        [policy_ enforceMenuPolicy];
    }

    MacosMenuPolicy(const MacosMenuPolicy&) = delete;
    MacosMenuPolicy& operator=(const MacosMenuPolicy&) = delete;

    ~MacosMenuPolicy() override { [policy_ stop]; }

  private:
    CorvaneMenuPolicy* policy_;
};

} // namespace

void declineSystemMenuItems() {
    @autoreleasepool {
        NSUserDefaults* const defaults = [NSUserDefaults standardUserDefaults];
        [defaults setBool:YES forKey:@"NSDisabledDictationMenuItem"];
        [defaults setBool:YES forKey:@"NSDisabledCharacterPaletteMenuItem"];
    }
}

std::unique_ptr<MenuPolicy> enforceMenuPolicy(const std::vector<MenuCommand>& commands) {
    return std::make_unique<MacosMenuPolicy>(commands);
}

} // namespace corvane::platform
