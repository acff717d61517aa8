// Result codes of the portable device, named once.
#pragma once

#include "platform/types.h"

namespace plat::portable {

constexpr Result ok = 0;
constexpr Result invalidParameter = result(0x80070057u);
constexpr Result outOfMemory = result(0x8007000Eu);
constexpr Result invalidCaps = result(0x88760064u);
constexpr Result invalidPixelFormat = result(0x88760091u);
constexpr Result invalidRectangle = result(0x88760096u);
constexpr Result noColorKeyHardware = result(0x887600DCu);
constexpr Result noExclusiveMode = result(0x887600E1u);
constexpr Result noOverlayHardware = result(0x88760104u);
constexpr Result hardwareAllocated = result(0x88760168u);
constexpr Result surfaceLocked = result(0x887601AEu);
constexpr Result cannotLock = result(0x887601B3u);
constexpr Result surfaceLost = result(0x887601C2u);
constexpr Result sizeTooLarge = result(0x887601E0u);
constexpr Result noHardwareSupport = result(0x88760233u);
constexpr Result primaryExists = result(0x88760234u);
constexpr Result notAnOverlay = result(0x88760244u);
constexpr Result exclusiveModeSet = result(0x88760245u);
constexpr Result notLocked = result(0x88760248u);
constexpr Result cannotCreateDC = result(0x88760249u);
constexpr Result noDC = result(0x8876024Au);
constexpr Result unsupportedMode = result(0x8876024Eu);
constexpr Result dcExists = result(0x8876026Cu);

}  // namespace plat::portable
