#include "ui/core/object.h"

#include "foundation/resource.h"
#include "ui/core/event_processor.h"
#include "ui/core/frame.h"
#include "ui/core/node_walk.h"
#include "ui/core/root.h"

#include <functional>
#include <new>
#include <unordered_set>

std::uint32_t ccUIObject::nextKey_ = 0;

namespace {

// All live nodes of the process, guarded by uiMutex().
std::unordered_set<ccUIObject const*>& cf_registry()
{
  static std::unordered_set<ccUIObject const*> registry;
  return registry;
}

// Memory that operator new has made and in which no node has begun yet. More than one, since the arguments of a constructor
// may make nodes themselves.
struct Block {
  unsigned char const* begin;
  std::size_t size;
};
constexpr int maxBlocks = 16;
thread_local Block blocks[maxBlocks];
thread_local int blockCount = 0;

void cf_removeBlock(int i)
{
  --blockCount;
  for (; i < blockCount; ++i)
    blocks[i] = blocks[i + 1];
}

ccColor& cf_dragColor()
{
  static ccColor color = ccColor::magentaColor();
  return color;
}

ccColor& cf_selectColor()
{
  static ccColor color = ccColor::yellowColor();
  return color;
}

}  // namespace

ccUIObject::ccUIObject()
{
  if (setAutoDelete_(this)) {
    setBit_(kOpNew, true);
    autoDelete(true);
  }
  ccLock lock(uiMutex());
  key_ = nextKey_++;
  cf_registry().insert(this);
}

ccUIObject::~ccUIObject()
{
  {
    ccLock lock(rootMutex(), /*lockNow=*/false);
    lock.lockFirm();
    if (root_ && root_->eventProcessor())
      root_->eventProcessor()->invalidateObject(this);
    ccLock registry(uiMutex(), /*lockNow=*/false);
    registry.lockFirm();
    cf_registry().erase(this);
    cc_NodeRef::nodeWent();
  }
  if (dyingHold_)
    dyingHold_->unlock();
}

void ccUIObject::beginDestruction()
{
  if (dyingHold_ || rootObject(true))  // a root's own mutex doesn't outlive it
    return;
  ccMutex& mutex = rootMutex();
  ccLock lock(mutex, /*lockNow=*/false);
  lock.lockFirm();
  mutex.lock();  // a second hold, which cannot wait and outlives this call
  dyingHold_ = &mutex;
}

void ccUIObject::leaveGesture()
{
  ccLock lock(rootMutex(), /*lockNow=*/false);
  lock.lockFirm();
  if (root_ && root_->eventProcessor())
    root_->eventProcessor()->nodeLeaves_(this);
}

void* ccUIObject::operator new(std::size_t size)
{
  void* const memory = ::operator new(size);
  if (blockCount == maxBlocks)
    cf_removeBlock(0);
  blocks[blockCount++] = Block{static_cast<unsigned char const*>(memory), size};
  return memory;
}

void ccUIObject::operator delete(void* memory)
{
  // A block whose node was never begun is still there.
  for (int i = blockCount; i-- > 0;)
    if (blocks[i].begin == memory)
      cf_removeBlock(i);
  ::operator delete(memory);
}

// The first node that begins in a block is the one that was made with new; those after it are its members.
bool ccUIObject::setAutoDelete_(ccUIObject const* node)
{
  auto const* const at = reinterpret_cast<unsigned char const*>(node);
  for (int i = blockCount; i-- > 0;) {
    std::less<unsigned char const*> const before;
    if (before(at, blocks[i].begin) || !before(at, blocks[i].begin + blocks[i].size))
      continue;
    cf_removeBlock(i);
    return true;
  }
  return false;
}

// Both mutexes outlive every node, since the first node makes them.
ccMutex& ccUIObject::orphanMutex()
{
  static ccMutex mutex(cc_LockRank::orphans);
  return mutex;
}

ccMutex& ccUIObject::uiMutex()
{
  // The registry is made first, so that it outlives the nodes too.
  static auto& registry = cf_registry();
  static_cast<void>(registry);
  static ccMutex mutex(cc_LockRank::ui);
  return mutex;
}

ccMutex& ccUIObject::rootMutex() const { return rootMutex_ ? *rootMutex_ : orphanMutex(); }

bool ccUIObject::isValid(ccUIObject* obj, std::uint32_t key, ccUIRootObject const* root)
{
  // A root that has gone has no nodes, and is not asked for its mutex.
  if (!exists_(obj, key, root))
    return false;
  // No orphan mutex for a null root: it is taken after root mutexes, and the caller may hold one of those.
  ccLock lock(root ? const_cast<ccUIRootObject*>(root)->mutex() : uiMutex());
  return exists_(obj, key, root);
}

bool ccUIObject::exists_(ccUIObject const* obj, std::uint32_t key, ccUIRootObject const* root)
{
  ccLock registry(uiMutex());
  return cf_registry().count(obj) != 0 && obj->key_ == key && obj->root_ == root;
}

bool ccUIObject::exists_(ccUIObject const* obj, std::uint32_t key)
{
  ccLock registry(uiMutex());
  return cf_registry().count(obj) != 0 && obj->key_ == key;
}

ccColor const& ccUIObject::dragColor() { return cf_dragColor(); }

void ccUIObject::dragColor(ccColor const& c) { cf_dragColor() = c; }

ccColor const& ccUIObject::selectColor() { return cf_selectColor(); }

void ccUIObject::selectColor(ccColor const& c) { cf_selectColor() = c; }

ccColor ccUIObject::curSelColor() const { return condSelected() ? selectColor() : ccColor::cyanColor(); }

ccUIShapes* ccUIObject::shapes(bool) { return nullptr; }

ccUIFrame* ccUIObject::frame(bool) { return nullptr; }

ccUIShapesFrame* ccUIObject::shapesFrame(bool) { return nullptr; }

ccUIRootObject* ccUIObject::rootObject(bool) { return nullptr; }

ccUIObject* ccUIObject::whoIsTouched(ccPair<long> const&) { return nullptr; }

ccUIObject* ccUIObject::frontSib()
{
  ccLock lock(rootMutex());
  ccUIObject* const up = parent();
  return up ? up->frontKid() : this;
}

ccUIObject* ccUIObject::backSib()
{
  ccLock lock(rootMutex());
  ccUIObject* const up = parent();
  return up ? up->backKid() : this;
}

void ccUIObject::front()
{
  ccLock lock(rootMutex());
  if (ccUIObject* const up = parent())
    up->front_(this);
}

void ccUIObject::back()
{
  ccLock lock(rootMutex());
  if (ccUIObject* const up = parent())
    up->back_(this);
}

void ccUIObject::newRoot(ccUIRootObject* root, bool recurse)
{
  if (root == root_)
    return;
  ccUIRootObject* const former = root_;
  ccMutex& formerMutex = former ? former->mutex() : orphanMutex();
  ccMutex& newMutex = root ? root->mutex() : orphanMutex();
  // The former root's mutex is held to the end, as the kids ask for it again below uiMutex().
  ccLock formerLock(formerMutex, former != nullptr);
  ccLock newLock(newMutex, root != nullptr);
  if (former) {
    if (former->eventProcessor())
      former->eventProcessor()->forget_(this);
    setBit_(kDragging, false);  // whatever drag it took part in was one of that root
    dragRuns_ = false;
    ccUIFrame* const self = frame(true);
    if (self && former->frameSizerAttachedTo_() == self)
      former->attachFrameSizer_(nullptr);
  }
  ccLock registry(uiMutex(), /*lockNow=*/false);
  registry.lockFirm();  // destructors come by here
  root_ = root;
  rootMutex_ = root ? &root->mutex() : nullptr;
  if (former)
    cc_NodeRef::nodeWent();
  if (recurse)
    for (ccUIObject* kid = backKid(); kid; kid = kid->closerSib())
      kid->newRoot(root, true);
}
