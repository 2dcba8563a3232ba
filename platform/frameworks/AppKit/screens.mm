// AppKit's screens, over the current desktop's arrangement.
#import <AppKit/AppKit.h>

#include <memory>
#include <vector>

#include "desktop/current.h"
#include "frameworks/hooks/calls.h"
#include "frameworks/hooks/injected_objects.h"

using platform::calls::Call;
using platform::desktop::Arrangement;
using platform::desktop::Screen;

namespace {

NSRect rectOf(const platform::desktop::Rect& rect) { return NSMakeRect(rect.x, rect.y, rect.width, rect.height); }

struct ScreenListContents {
  std::shared_ptr<const Arrangement> arrangement;
  std::vector<NSScreen*> screens;
};

}  // namespace

@interface NSScreen ()
- (instancetype)initWithScreen:(const Screen&)screen;
@end

/// The screens of one arrangement. An element without a screen is nil, which an ordinary array could not hold.
@interface PlatformScreenList : NSArray {
  ScreenListContents* _contents;
}
- (instancetype)initWithArrangement:(std::shared_ptr<const Arrangement>)arrangement;
- (BOOL)isFor:(const std::shared_ptr<const Arrangement>&)arrangement;
- (NSScreen*)main;
@end

@implementation PlatformScreenList

- (instancetype)initWithArrangement:(std::shared_ptr<const Arrangement>)arrangement {
  self = [super init];
  if (self != nil) {
    _contents = new ScreenListContents{std::move(arrangement), {}};
    for (const Screen& screen : _contents->arrangement->screens) {
      _contents->screens.push_back(screen.frame ? [[NSScreen alloc] initWithScreen:screen] : nil);
    }
  }
  return self;
}

- (void)dealloc {
  for (NSScreen* const screen : _contents->screens) {
    [screen release];
  }
  delete _contents;
  [super dealloc];
}

- (BOOL)isFor:(const std::shared_ptr<const Arrangement>&)arrangement {
  return _contents->arrangement == arrangement;
}

- (NSUInteger)count {
  return _contents->screens.size();
}

- (id)objectAtIndex:(NSUInteger)index {
  return index < _contents->screens.size() ? _contents->screens[index] : nil;
}

- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state objects:(id*)stackbuf count:(NSUInteger)len {
  (void)stackbuf;
  (void)len;
  // A list never changes.
  static unsigned long unchanged = 0;
  if (state->state != 0) {
    return 0;
  }
  state->state = 1;
  state->itemsPtr = reinterpret_cast<id*>(_contents->screens.data());
  state->mutationsPtr = &unchanged;
  return _contents->screens.size();
}

- (NSScreen*)main {
  const auto index = _contents->arrangement->main_screen;
  return index && *index < _contents->screens.size() ? _contents->screens[*index] : nil;
}

@end

namespace {

/// The list for the current arrangement. An outdated list is autoreleased, so that a screen borrowed from it stays
/// valid in the caller's pool.
PlatformScreenList* currentList() {
  static PlatformScreenList* list = nil;
  const auto arrangement = platform::desktop::current()->arrangement();
  if (list == nil || ![list isFor:arrangement]) {
    [list autorelease];
    list = [[PlatformScreenList alloc] initWithArrangement:arrangement];
  }
  return list;
}

}  // namespace

@implementation NSScreen

+ (NSArray*)screens {
  const auto fault = platform::borrowedFault<NSArray*>(platform::calls::fault(Call::NSScreen_screens));
  return fault ? *fault : currentList();
}

+ (NSScreen*)mainScreen {
  const auto fault = platform::borrowedFault<NSScreen*>(platform::calls::fault(Call::NSScreen_mainScreen));
  return fault ? *fault : [currentList() main];
}

- (instancetype)initWithScreen:(const Screen&)screen {
  self = [super init];
  if (self != nil) {
    _frame = rectOf(*screen.frame);
    _backingScaleFactor = screen.backing_scale;
  }
  return self;
}

- (NSRect)frame {
  const platform::calls::Fault fault = platform::calls::fault(Call::NSScreen_frame);
  return fault.fail || fault.rect ? rectOf(fault.rect.value_or(platform::desktop::Rect{})) : _frame;
}

- (CGFloat)backingScaleFactor {
  const platform::calls::Fault fault = platform::calls::fault(Call::NSScreen_backingScaleFactor);
  return fault.fail || fault.real ? fault.real.value_or(0) : _backingScaleFactor;
}

@end
