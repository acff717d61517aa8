// Archives: the first byte says what is read from the others. What could be read is written, and must then read the same.
#include "canvas/color.h"
#include "canvas/graphic_props.h"
#include "foundation/archive.h"
#include "foundation/exception.h"
#include "foundation/pel_buffer.h"
#include "tests/fuzz/fuzz.h"
#include "ui/core/keyboard_event.h"
#include "ui/core/mouse_event.h"

#include <set>
#include <vector>

namespace {

using Data = std::vector<unsigned char>;

// What cannot be read is told by an exception of the library. What could be read must not throw any more.
template <class Act> bool done(Act&& act)
{
  try {
    act();
    return true;
  } catch (ccException const&) {
    return false;
  }
}

template <class T> Data written(T& value)
{
  ccMemoryArchive out;
  out || value;
  return out.data();
}

template <class T> void value(Data const& data)
{
  ccMemoryArchive in(data);
  T first{};
  if (!done([&] { in || first; }))
    return;
  Data const once = written(first);
  ccMemoryArchive again(once);
  T second{};
  again || second;
  cf_fuzzExpect(again.remaining() == 0, "what is written is read to its end");
  cf_fuzzExpect(written(second) == once, "what is read is what was written");
}

struct Objects {
  std::set<ccPersistent*> all;
  Objects() = default;
  Objects(Objects const&) = delete;
  Objects& operator=(Objects const&) = delete;
  ~Objects()
  {
    for (ccPersistent* o : all)
      delete o;
  }
};

// Any registered class, exceptions among them, up to the end of the data.
void objects(Data const& data)
{
  Objects read;
  ccMemoryArchive in(data);
  std::vector<ccPersistent*> order;
  while (in.remaining() && order.size() < 1000) {
    ccPersistent* object = nullptr;
    if (!done([&] { in.object(object); }))
      break;
    read.all.insert(object);
    order.push_back(object);
  }
  ccMemoryArchive out;
  for (ccPersistent* object : order)
    out.object(object);
  Objects second;
  ccMemoryArchive again(out.data());
  for (std::size_t i = 0; i < order.size(); ++i) {
    ccPersistent* object = nullptr;
    again.object(object);
    second.all.insert(object);
    cf_fuzzExpect(!object == !order[i], "null stays null");
    cf_fuzzExpect(!object || object->className() == std::string(order[i]->className()), "a class stays what it is");
  }
  cf_fuzzExpect(again.remaining() == 0 && second.all.size() == read.all.size(), "each object is moved once");
}

void exceptions(Data const& data)
{
  Objects read;
  ccMemoryArchive in(data);
  while (in.remaining()) {
    ccException* object = nullptr;
    if (!done([&] { in.object(object); }))
      return;
    read.all.insert(object);
    if (object)
      (void)object->message();
  }
}

using Reader = void (*)(Data const&);
constexpr Reader kReaders[] = {
    objects,
    exceptions,
    value<std::string>,
    value<std::vector<std::string>>,
    value<std::vector<double>>,
    value<std::vector<bool>>,
    value<std::vector<std::vector<unsigned short>>>,
    value<std::vector<ccPair<long>>>,
    value<ccVector<2>>,
    value<ccPelBuffer<unsigned char>>,
    value<ccPelBuffer<unsigned short>>,
    value<ccPelBuffer<ccPackedRGB32Pel>>,
    value<ccPelBuffer_const<ccPackedRGB16Pel>>,
    value<ccColor>,
    value<ccRGB>,
    value<ccMouseEvent>,
    value<ccKeyboardEvent>,
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
  if (size == 0)
    return 0;
  kReaders[data[0] % std::size(kReaders)](Data(data + 1, data + size));
  return 0;
}
