#include "ui/notify/listener_tag.h"

#include "ui/notify/notify_delivery.h"

namespace {

ccCriticalSection& cf_section() { return cc_UINotifyCriticalSectionSet::theOne()->tags; }

}  // namespace

bool ccUINotifyListenerTag::isEnabled() const
{
  ccCriticalSectionLock lock(cf_section());
  return switch_ && switch_->on;
}

void ccUINotifyListenerTag::isEnabled(bool on) const
{
  ccCriticalSectionLock lock(cf_section());
  if (switch_)
    switch_->on = on;
}

ccUINotifyListenerTag::Enabler::Enabler(ccUINotifyListenerTag& tag, bool on) : tag_(tag), former_(tag.isEnabled())
{
  tag_.isEnabled(on);
}

ccUINotifyListenerTag::Enabler::~Enabler() { tag_.isEnabled(former_); }
