#include "ui/shapes/handle_icons.h"

#include "canvas/tablet.h"
#include "foundation/resource.h"
#include "ui/core/object.h"

#include <array>

namespace {

// "0" takes the colour of the handles; "+" is touched and not drawn, "." is neither.
constexpr char const* kSquare =
    "/"
    "0000000/"
    "0000000/"
    "0000000/"
    "0000000/"
    "0000000/"
    "0000000/"
    "0000000/";
constexpr char const* kTurn =
    "/"
    ".0..000..../"
    ".00000000../"
    ".000+++000./"
    "00000+++00./"
    "00+++++++00/"
    "+++++++++00/"
    "00+++++++00/"
    "00000+++00./"
    ".000+++000./"
    ".00000000../"
    ".0..000..../";
constexpr char const* kDisk =
    "/"
    "....000..../"
    "..0000000../"
    ".000000000./"
    ".000000000./"
    "00000000000/"
    "00000000000/"
    "00000000000/"
    ".000000000./"
    ".000000000./"
    "..0000000../"
    "....000..../";
constexpr char const* kSkew =
    "/"
    "++0++++++../"
    "+00++++++../"
    "00000++++../"
    ".00+00+++../"
    "..0+00+++../"
    "..++00+++../"
    "..++00++0../"
    "..++00++00./"
    "..+++000000/"
    "..++++++00+/"
    "..++++++0++/";
constexpr char const* kBend =
    "/"
    ".0..000..../"
    ".00000000../"
    ".000+++000./"
    "00000+++00./"
    "00+++++++00/"
    "+++++++++00/"
    "+++++++++++/"
    "++++++++++./"
    ".+++++++++./"
    ".++++++++../"
    ".+..+++..../";
constexpr char const* kAdd =
    "/"
    ".0.....0./"
    "00+++++00/"
    ".+++++++./"
    ".++000++./"
    ".++000++./"
    ".++000++./"
    ".+++++++./"
    "00+++++00/"
    ".0.....0./";
constexpr char const* kDelete =
    "/"
    "00+++++++00/"
    "+00+++++00+/"
    "+000+++000+/"
    "++000+000++/"
    "+++00000+++/"
    "++++000++++/"
    "+++00000+++/"
    "++000+000++/"
    "+000+++000+/"
    "+00+++++00+/"
    "00+++++++00/";

struct Text {
  char const* picture;
  char const* touchMap;
  ccPair<long> touchOrigin;
  ccPoint origin;
};

// The origins put the middle of a picture on the place of the handle. The skew and the bend handle are touched where a disk and
// a turn handle would be: their own pictures are too thin for a finger.
constexpr Text texts[cc_HandleIcons::count] = {
    {kSquare, kSquare, {3, 3}, {3.5, 3.5}}, {kTurn, kTurn, {5, 5}, {5.5, 5.5}}, {kDisk, kDisk, {5, 5}, {5.5, 5.5}},
    {kSkew, kDisk, {5, 5}, {5.5, 5.5}},     {kBend, kTurn, {5, 5}, {5.5, 5.5}}, {kAdd, kAdd, {4, 4}, {4.5, 4.5}},
    {kDelete, kDelete, {5, 5}, {5.5, 5.5}}};

struct Table {
  std::array<ccRLEBuffer, cc_HandleIcons::count> pictures;
  std::vector<unsigned char> colorMap{0};  // of the icons; entry 0 is the client's
  ccColor color;
  bool colorInited = false;
};

// Never destroyed, as trees may outlive static objects.
Table& cf_table()
{
  static Table& table = *new Table();
  return table;
}

// A picture's pels are the index of its colour. The indices that mean the client's colour and see-through pels are drawn by a
// place of their own in the map.
void cf_build(Table& table)
{
  unsigned char const index = table.color.index();
  bool const taken = index == 0 || index == ccColor::passColor().index();
  std::vector<unsigned char> const colors{taken ? static_cast<unsigned char>(1) : index};
  std::vector<unsigned char> map{0};
  if (taken)
    map.push_back(index);
  std::array<ccRLEBuffer, cc_HandleIcons::count> pictures;
  for (std::size_t i = 0; i < pictures.size(); ++i)
    pictures[i] = ccUITablet::makeIcon(texts[i].picture, colors);
  table.pictures.swap(pictures);
  table.colorMap.swap(map);
}

}  // namespace

void cc_HandleIcons::init()
{
  ccLock lock(ccUIObject::uiMutex());
  Table& table = cf_table();
  if (!table.pictures[0].isNull())
    return;
  if (!table.colorInited) {
    table.color = ccColor::magentaColor();
    table.colorInited = true;
  }
  cf_build(table);
}

cc_HandleIcons::Icon cc_HandleIcons::icon(int i)
{
  init();
  ccLock lock(ccUIObject::uiMutex());
  Text const& text = texts[i];
  Table const& table = cf_table();
  return Icon{table.pictures[static_cast<std::size_t>(i)], table.colorMap, text.touchMap, text.touchOrigin, text.origin};
}

ccColor const& cc_HandleIcons::color()
{
  init();
  return cf_table().color;
}

void cc_HandleIcons::color(ccColor const& c)
{
  ccLock lock(ccUIObject::uiMutex());
  Table& table = cf_table();
  table.color = c;
  table.colorInited = true;
  table.pictures[0] = ccRLEBuffer();
  init();
}
