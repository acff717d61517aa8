// Every result code and its text.
#include "backend/scope/ddraw.h"

#include <gtest/gtest.h>

namespace {

struct Row {
  std::uint32_t code;
  char const* text;
};

constexpr Row rows[] = {
    {0, "No Error"},
    {0x80004001, "Not supported."},
    {0x80004005, "Generic failure."},
    {0x800401f0, "DirectDraw object not initialized."},
    {0x8007000e, "Not enough memory to perform operation."},
    {0x80070057, "Invalid parameter."},
    {0x88760005, "Object already initialized."},
    {0x8876000a, "Cannot attach surface to the specified surface."},
    {0x88760014, "Cannot detach surface."},
    {0x88760028, "Support currently not available."},
    {0x88760037, "Exception encountered."},
    {0x8876005a, "Height alignment error."},
    {0x8876005f, "Incompatible primary surface."},
    {0x88760064, "Invalid caps bits."},
    {0x8876006e, "Cliplist not supported."},
    {0x88760078, "Mode not supported."},
    {0x88760082, "Invalid object."},
    {0x88760091, "Invalid pixel format."},
    {0x88760096, "Invalid rectangle."},
    {0x887600a0, "Surface locked."},
    {0x887600cd, "No cliplist available."},
    {0x887600d2, "No hardware color conversion."},
    {0x887600d4, "SetCooperativeLevel not called."},
    {0x887600d7, "No color key attached to surface."},
    {0x887600dc, "No hardware support for color keys."},
    {0x887600de, "No DirectDraw support available with this driver."},
    {0x887600e1, "Operation requires the application to have exclusive mode."},
    {0x887600e6, "Flipping surfaces not supported."},
    {0x887600f0, "No GDI present."},
    {0x887600fa, "No hardware support for mirror operations."},
    {0x887600ff, "Object not found."},
    {0x88760104, "No hardware support for overlays."},
    {0x88760118, "No hardware support for raster operations."},
    {0x88760122, "No hardware support for rotations."},
    {0x88760136, "No hardware support for stretching."},
    {0x8876013c, "Surface must be in 4 bit color palette mode."},
    {0x8876013d, "Surface must be in 4 bit color index palette mode."},
    {0x88760140, "Surface must be in 8 bit color palette mode."},
    {0x8876014a, "No hardware support for textures."},
    {0x8876014f, "No hardware support for vertical blank synched operations."},
    {0x88760154, "No hardware support for zbuffer blting."},
    {0x8876015e, "No hardware support for z layering of overlays."},
    {0x88760168, "Required hardware alreay allocated."},
    {0x8876017c, "Not enough video memory available."},
    {0x8876017e, "No hardware support for clipping overlays."},
    {0x88760180, "Can only have one color key active at a time."},
    {0x88760183, "Palette locked."},
    {0x88760190, "No color key set."},
    {0x8876019a, "Surface already attached to the specified surface."},
    {0x887601a4, "Surface already a dependency of the specified surface."},
    {0x887601ae, "Surface locked."},
    {0x887601b3, "Cannot lock surface."},
    {0x887601b8, "Surface is obscured."},
    {0x887601c2, "Surface lost."},
    {0x887601cc, "Surface not attached."},
    {0x887601d6, "Requested surface height too large."},
    {0x887601e0, "Requested surface size too large."},
    {0x887601ea, "Requested surface width too large."},
    {0x887601fe, "Unsupported format."},
    {0x88760208, "Bitmask in the specified pixel format not supported."},
    {0x88760219, "Vertical blank in progress."},
    {0x8876021c, "Blitter busy."},
    {0x88760230, "Rectangle not horizontally aligned."},
    {0x88760231, "Invalid GUID."},
    {0x88760232, "DirectDraw object alreay created."},
    {0x88760233, "No hardware support for the requested operation."},
    {0x88760234, "Primary surface already exists."},
    {0x88760235, "Software emulation not available."},
    {0x88760236, "Region too small."},
    {0x88760237, "Cannot set cliplist, clipper using HWND."},
    {0x88760238, "Not clipper attached."},
    {0x88760239, "Clipper notification requires an HWND."},
    {0x8876023a, "HWND used by DirectDraw CooperativeLevel has been subclassed."},
    {0x8876023b, "The CooperativeLevel HWND has already been set."},
    {0x8876023c, "No palette attached to the surface."},
    {0x8876023d, "No hardware support for 16 or 256 color palettes."},
    {0x8876023e, "BltFast cannot clip."},
    {0x8876023f, "No hardware support for blt operations."},
    {0x88760240, "No hardware support for raster operations."},
    {0x88760241, "Overlay not visible."},
    {0x88760242, "No overlay destination."},
    {0x88760243, "Invalid overlay position."},
    {0x88760244, "Not an overlay surface."},
    {0x88760245, "Exclusive mode already set."},
    {0x88760246, "Not a flippable surface."},
    {0x88760247, "Cannot duplicate primary and 3D surfaces."},
    {0x88760248, "Surface not locked."},
    {0x88760249, "Cannot create any more DCs."},
    {0x8876024a, "No DC created for the surface."},
    {0x8876024b, "Cannot restore surface, it was created in a different mode."},
    {0x8876024c, "Cannot restore surface, it is an implicitly created surface."},
    {0x8876024d, "Not a palettized surface."},
    {0x8876024e, "Unsupported display mode."},
    {0x8876024f, "No hardware support for mip-map texture mapping."},
    {0x88760250, "Invalid surface type."},
    {0x8876026c, "DC already created."},
    {0x88760280, "Surface page lock failed."},
    {0x88760294, "Surface page unlock failed."},
    {0x887602a8, "Surface not page locked."},
};

}  // namespace

TEST(DirectDrawErrors, everyCodeHasItsText)
{
  for (Row const& row : rows)
    EXPECT_EQ(ccDirectDraw::errorCodeToString(plat::result(row.code)), row.text) << std::hex << row.code;
  EXPECT_EQ(std::size(rows), 99u);
}

TEST(DirectDrawErrors, signExtendedCodesAreTheSame)
{
  EXPECT_EQ(ccDirectDraw::errorCodeToString(static_cast<long>(static_cast<std::int32_t>(0x887601C2u))), "Surface lost.");
}

TEST(DirectDrawErrors, unlistedCodesAreUnknown)
{
  for (std::uint32_t const code : {1u, 0x88760001u, 0x887602A9u, 0xFFFFFFFFu})
    EXPECT_EQ(ccDirectDraw::errorCodeToString(plat::result(code)), "Unknown error");
}
