// Pictures as text: X black, . white, o grey, blank see-through.
#include "platform/resource_pictures.h"

namespace plat::pictures {
namespace {

using Row = std::string_view;

constexpr Row arrowRows[] = {
    "X           ",
    "XX          ",
    "X.X         ",
    "X..X        ",
    "X...X       ",
    "X....X      ",
    "X.....X     ",
    "X......X    ",
    "X.......X   ",
    "X........X  ",
    "X.........X ",
    "X......XXXXX",
    "X...X..X    ",
    "X..XX..X    ",
    "X.X  X..X   ",
    "XX   X..X   ",
    "X     X..X  ",
    "      X..X  ",
    "       XX   ",
};

constexpr Row fourArrowsRows[] = {
    "       ...       ",
    "      ..X..      ",
    "     ..XXX..     ",
    "     .XXXXX.     ",
    "     ...X...     ",
    "  ...  .X.  ...  ",
    " ..X.  .X.  .X.. ",
    "..XX....X....XX..",
    ".XXXXXXXXXXXXXXX.",
    "..XX....X....XX..",
    " ..X.  .X.  .X.. ",
    "  ...  .X.  ...  ",
    "     ...X...     ",
    "     .XXXXX.     ",
    "     ..XXX..     ",
    "      ..X..      ",
    "       ...       ",
};

constexpr Row zoomInRows[] = {
    "  .......         ",
    " ..XXXXX..        ",
    "..X.....X..       ",
    ".X...X...X.       ",
    ".X...X...X.       ",
    ".X.XXXXX.X.       ",
    ".X...X...X.       ",
    ".X...X...X.       ",
    "..X.....X...      ",
    " ..XXXXX.XX..     ",
    "  .......XXX..    ",
    "        ..XXX..   ",
    "         ..XXX..  ",
    "          ..XXX.. ",
    "           ..XXX. ",
    "            ..X.. ",
    "             ...  ",
    "                  ",
};

constexpr Row zoomOutRows[] = {
    "  .......         ",
    " ..XXXXX..        ",
    "..X.....X..       ",
    ".X.......X.       ",
    ".X.......X.       ",
    ".X.XXXXX.X.       ",
    ".X.......X.       ",
    ".X.......X.       ",
    "..X.....X...      ",
    " ..XXXXX.XX..     ",
    "  .......XXX..    ",
    "        ..XXX..   ",
    "         ..XXX..  ",
    "          ..XXX.. ",
    "           ..XXX. ",
    "            ..X.. ",
    "             ...  ",
    "                  ",
};

constexpr Row openHandRows[] = {
    "       XX       ",
    "   XX X..XXX    ",
    "  X..XX..X..X   ",
    "  X..XX..X..X X ",
    "   X..X..X..XX.X",
    "   X..X..X..X..X",
    " XX X.......X..X",
    "X..XX..........X",
    "X...X.........X ",
    " X............X ",
    "  X...........X ",
    "  X..........X  ",
    "   X.........X  ",
    "    X.......X   ",
    "     X......X   ",
    "     X......X   ",
};

constexpr Row closedHandRows[] = {
    "                ",
    "                ",
    "                ",
    "    XX XX XX    ",
    "   X..X..X..XX  ",
    "   X..X..X..X.X ",
    "    X.......X..X",
    "   XX..........X",
    "  X.X..........X",
    "  X............X",
    "  X...........X ",
    "   X..........X ",
    "    X........X  ",
    "     X......X   ",
    "     X......X   ",
    "                ",
};

constexpr Row crossRows[] = {
    "       ...       ",
    "       .X.       ",
    "       .X.       ",
    "       .X.       ",
    "       .X.       ",
    "       .X.       ",
    "       .X.       ",
    ".................",
    ".XXXXXX.X.XXXXXX.",
    ".................",
    "       .X.       ",
    "       .X.       ",
    "       .X.       ",
    "       .X.       ",
    "       .X.       ",
    "       .X.       ",
    "       ...       ",
};

constexpr Row toolPointerRows[] = {
    "                ",
    "    X           ",
    "    XX          ",
    "    X.X         ",
    "    X..X        ",
    "    X...X       ",
    "    X....X      ",
    "    X.....X     ",
    "    X......X    ",
    "    X...XXXXX   ",
    "    X.X..X      ",
    "    XX X..X     ",
    "    X  X..X     ",
    "        XX      ",
    "                ",
};

constexpr Row toolPanRows[] = {
    "       XX       ",
    "   XX X..XXX    ",
    "  X..XX..X..X   ",
    "  X..XX..X..X X ",
    "   X..X..X..XX.X",
    "   X..X..X..X..X",
    " XX X.......X..X",
    "X..XX..........X",
    "X...X.........X ",
    " X............X ",
    "  X...........X ",
    "  X..........X  ",
    "   X.........X  ",
    "    X.......X   ",
    "     X......X   ",
};

constexpr Row toolZoomInRows[] = {
    "                ",
    "   XXXXX        ",
    "  X.....X       ",
    " X...X...X      ",
    " X...X...X      ",
    " X.XXXXX.X      ",
    " X...X...X      ",
    " X...X...X      ",
    "  X.....X       ",
    "   XXXXX XX     ",
    "          XX    ",
    "           XX   ",
    "            XX  ",
    "             XX ",
    "                ",
};

constexpr Row toolZoomOutRows[] = {
    "                ",
    "   XXXXX        ",
    "  X.....X       ",
    " X.......X      ",
    " X.......X      ",
    " X.XXXXX.X      ",
    " X.......X      ",
    " X.......X      ",
    "  X.....X       ",
    "   XXXXX XX     ",
    "          XX    ",
    "           XX   ",
    "            XX  ",
    "             XX ",
    "                ",
};

constexpr Row toolFitRows[] = {
    "XXXXXXXXXXXXXXXX",
    "X..............X",
    "X.XXX......XXX.X",
    "X.XX........XX.X",
    "X.X.X......X.X.X",
    "X....X....X....X",
    "X.....oooo.....X",
    "X.....oooo.....X",
    "X.....oooo.....X",
    "X....X....X....X",
    "X.X.X......X.X.X",
    "X.XX........XX.X",
    "X.XXX......XXX.X",
    "X..............X",
    "XXXXXXXXXXXXXXXX",
};

constexpr Row toolZoom100Rows[] = {
    "                ",
    "                ",
    "   X         X  ",
    "  XX        XX  ",
    " X X   X   X X  ",
    "   X   X     X  ",
    "   X         X  ",
    "   X         X  ",
    "   X   X     X  ",
    "   X   X     X  ",
    "   X         X  ",
    " XXXXX     XXXXX",
    "                ",
    "                ",
    "                ",
};

constexpr Row toolRefreshRows[] = {
    "                ",
    "     XXXXX   X  ",
    "   XX     XX X  ",
    "  X         XX  ",
    " X        XXXX  ",
    " X              ",
    "X               ",
    "X              X",
    "               X",
    "              X ",
    "  XXXX        X ",
    "  XX         X  ",
    "  X XX     XX   ",
    "  X   XXXXX     ",
    "                ",
};

constexpr Row toolPixelGridRows[] = {
    "XXXXXXXXXXXXXXXX",
    "X....X....X....X",
    "X....X....X....X",
    "X....X....X....X",
    "X....X....X....X",
    "X....X....X....X",
    "X....X....X....X",
    "XXXXXXXXXXXXXXXX",
    "X....X....X....X",
    "X....X....X....X",
    "X....X....X....X",
    "X....X....X....X",
    "X....X....X....X",
    "X....X....X....X",
    "XXXXXXXXXXXXXXXX",
};

constexpr Row toolSubpixelGridRows[] = {
    "XXXXXXXXXXXXXXXX",
    "X..o..o..o..o..X",
    "X..o..o..o..o..X",
    "XooooooooooooooX",
    "X..o..o..o..o..X",
    "X..o..o..o..o..X",
    "X..o..o..o..o..X",
    "XooooooooooooooX",
    "X..o..o..o..o..X",
    "X..o..o..o..o..X",
    "X..o..o..o..o..X",
    "XooooooooooooooX",
    "X..o..o..o..o..X",
    "X..o..o..o..o..X",
    "XXXXXXXXXXXXXXXX",
};

}  // namespace

constinit Picture const arrow = arrowRows;
constinit Picture const fourArrows = fourArrowsRows;
constinit Picture const zoomIn = zoomInRows;
constinit Picture const zoomOut = zoomOutRows;
constinit Picture const openHand = openHandRows;
constinit Picture const closedHand = closedHandRows;
constinit Picture const cross = crossRows;
constinit Picture const toolPointer = toolPointerRows;
constinit Picture const toolPan = toolPanRows;
constinit Picture const toolZoomIn = toolZoomInRows;
constinit Picture const toolZoomOut = toolZoomOutRows;
constinit Picture const toolFit = toolFitRows;
constinit Picture const toolZoom100 = toolZoom100Rows;
constinit Picture const toolRefresh = toolRefreshRows;
constinit Picture const toolPixelGrid = toolPixelGridRows;
constinit Picture const toolSubpixelGrid = toolSubpixelGridRows;

}  // namespace plat::pictures
