#include "ui/notify/notify_object.h"

#include "canvas/ui_error.h"
#include "foundation/resource.h"
#include "ui/core/root.h"
#include "ui/notify/notify_delivery.h"
#include "ui/shapes/man_shape.h"

ccUINotifyObject::~ccUINotifyObject()
{
  if (!uiObject_ || !isNotificationEnabled_)
    return;
  try {
    postNotification_(new ccUINotification(this, ccUINotification::objectDestroyed));
  } catch (...) {
    // Without memory nobody hears of the end, but the node dies all the same.
  }
}

void ccUINotifyObject::endStateChange_() {}

ccUINotifyListenerTag ccUINotifyObject::addListener(ccUINotifyObject* object, void* context, Callback callback,
                                                    unsigned long typeMask)
{
  auto const mask = static_cast<std::uint32_t>(typeMask);
  if (!object || mask == 0)
    return ccUINotifyListenerTag();
  if (!callback)
    throw ccUIError::BadParams();
  std::uint32_t const key = object->uiObject()->key();
  return cc_NotifyDelivery::theOne().addListener(key, context, callback, mask);
}

void ccUINotifyObject::removeListener(ccUINotifyListenerTag const& tag)
{
  if (tag.isValid())
    cc_NotifyDelivery::theOne().removeListener(tag);
}

void ccUINotifyObject::cachePointers_()
{
  if (uiObject_.load(std::memory_order_acquire))
    return;
  ccLock lock(ccUIObject::uiMutex());
  ccUIObject* const node = dynamic_cast<ccUIObject*>(this);
  if (!node)
    throw ccUIError::BadParams();
  shapes_ = dynamic_cast<ccUIShapes*>(node);
  manShape_ = dynamic_cast<ccUIManShape*>(node);
  key_ = node->key();
  uiObject_.store(node, std::memory_order_release);
}

ccUIObject* ccUINotifyObject::uiObject()
{
  cachePointers_();
  return uiObject_;
}

std::uint32_t ccUINotifyObject::nodeKey_() const
{
  if (uiObject_)
    return key_;
  auto const* const node = dynamic_cast<ccUIObject const*>(this);
  return node ? node->key() : ccUINotification::noKey;
}

ccUIRootObject* ccUINotifyObject::notifyRoot_()
{
  ccUIObject* const node = uiObject();
  ccUIRootObject* const self = node->rootObject(true);
  return self ? self : node->root();
}

ccMutex& ccUINotifyObject::notifyRootMutex_()
{
  ccUIRootObject* const root = notifyRoot_();
  return root ? root->mutex() : uiObject()->rootMutex();
}

bool ccUINotifyObject::isNotificationEnabled()
{
  ccLock lock(notifyRootMutex_());
  return isNotificationEnabled_;
}

void ccUINotifyObject::isNotificationEnabled(bool on)
{
  ccLock lock(notifyRootMutex_());
  isNotificationEnabled_ = on;
}

ccUINotifyObject::State ccUINotifyObject::beginStateChange()
{
  ccLock lock(notifyRootMutex_());
  if (!isNotificationEnabled_)
    return State();
  cc_NodeRef const self(uiObject());
  State const now = state();
  if (self.exists())
    postNotification_(new ccUINotification(this, now));
  return now;
}

void ccUINotifyObject::endStateChange(State const& before, bool redraw, bool flush)
{
  ccLock lock(notifyRootMutex_());
  cc_NodeRef const self(uiObject());
  ccPtrHandle_const<ccUINotification> changed;
  if (isNotificationEnabled_) {
    State const after = state();
    if (!self.exists())
      return;
    changed = ccPtrHandle_const<ccUINotification>(new ccUINotification(this, before, after));
  }
  endStateChange_();
  if (redraw && self.exists())
    redraw_(self);
  if (flush && self.exists())
    if (ccUIRootObject* const root = notifyRoot_())
      root->globalUpdate();
  // Last, so that listeners hear of a change that can be seen. A hook may have switched notification off, or ended the node,
  // of which its listeners have heard then.
  if (self.exists() && isNotificationEnabled_)
    postNotification_(changed);
}

void ccUINotifyObject::redraw_(cc_NodeRef const& self)
{
  if (manShape_) {
    manShape_->showHandles(manShape_->wantsHandles());
    if (self.exists())
      manShape_->updateHandles();
  }
  if (shapes_ && self.exists())
    shapes_->update(/*withKids=*/true, /*erase=*/true, nullptr, cc_TabletEnums::bothLayers);
}

void ccUINotifyObject::postNotification_(ccPtrHandle_const<ccUINotification> const& n)
{
  cc_NotifyDelivery::theOne().post(n);
}

ccUINotifyObject::Enabler::Enabler(ccUINotifyObject* object, bool on)
    : object_(object), node_(object ? object->uiObject() : nullptr)
{
  if (!object)
    return;
  ccLock lock(object->notifyRootMutex_());
  former_ = object->isNotificationEnabled_;
  object->isNotificationEnabled_ = on;
}

ccUINotifyObject::Enabler::~Enabler()
{
  if (!node_.exists())
    return;
  ccLock lock(object_->notifyRootMutex_(), /*lockNow=*/false);
  lock.lockFirm();
  object_->isNotificationEnabled_ = former_;
}
