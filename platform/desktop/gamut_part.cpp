#include "desktop/parts.h"

namespace platform::desktop {

extern "C" PLATFORM_API const GamutPart ostrevin_gamut_part{.color_space = colorSpaceOf};

}  // namespace platform::desktop
