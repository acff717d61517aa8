#include "platform/resources.h"

#include "platform/resource_pictures.h"

#include <map>

namespace plat {
namespace {

constexpr int consoleResource = 628;

class BuiltInResources final : public ResourceSource {
public:
  MenuEntry const* menu(int id) const override { return id == consoleResource ? &menu_ : nullptr; }
  std::vector<ToolButton> const* toolBar(int id) const override { return id == consoleResource ? &tools_ : nullptr; }
  std::string const* string(int id) const override
  {
    auto const found = strings_.find(id);
    return found == strings_.end() ? nullptr : &found->second;
  }
  CursorPicture const* cursor(int id) const override
  {
    auto const found = cursors_.find(id);
    return found == cursors_.end() ? nullptr : &found->second;
  }

private:
  MenuEntry const menu_{0,
                        "",
                        {{0, "&Console", {{40501, "&Hide", {}}}},
                         {0,
                          "&Tools",
                          {{40502, "&Pointer", {}},
                           {40503, "P&an", {}},
                           {40504, "Zoom &In", {}},
                           {40505, "Zoom &Out", {}},
                           {},
                           {40506, "&Fit Image", {}},
                           {40507, "Zoom &100%", {}},
                           {40509, "&Refresh", {}},
                           {},
                           {40510, "Pixel &Grid", {}},
                           {40511, "&Subpixel Grid", {}}}},
                         {0, "&View", {{40512, "&Horizontal Scrollbar", {}}, {40513, "&Vertical Scrollbar", {}}}}}};

  std::vector<ToolButton> const tools_{{40502, "Pointer", pictures::toolPointer},
                                       {40503, "Pan", pictures::toolPan},
                                       {40504, "Zoom in", pictures::toolZoomIn},
                                       {40505, "Zoom out", pictures::toolZoomOut},
                                       {},
                                       {40506, "Fit image", pictures::toolFit},
                                       {40507, "Zoom 100%", pictures::toolZoom100},
                                       {40509, "Refresh", pictures::toolRefresh},
                                       {},
                                       {40510, "Pixel grid", pictures::toolPixelGrid},
                                       {40511, "Subpixel grid", pictures::toolSubpixelGrid}};

  // First texts of the status panes. The blanks give the last two the width of what they will show.
  std::map<int, std::string> const strings_{
      {501, "Image: (0000.00, 0000.00)   Client: (0000.00, 0000.00)    Pel: -                            "},
      {506, "1x          "},
      {509, "Ready"}};

  // By the values of the root's cursor: arrow, over a handle, zoom in, zoom out, pan, panning, exact place.
  std::map<int, CursorPicture> const cursors_{
      {600, {{0, 0}, pictures::arrow}},      {601, {{8, 8}, pictures::fourArrows}}, {602, {{5, 5}, pictures::zoomIn}},
      {603, {{5, 5}, pictures::zoomOut}},    {604, {{8, 8}, pictures::openHand}},   {605, {{8, 8}, pictures::closedHand}},
      {606, {{8, 8}, pictures::cross}}};
};

}  // namespace

ResourceSource& builtInResources()
{
  static BuiltInResources all;
  return all;
}

}  // namespace plat
