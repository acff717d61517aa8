#include "ui/notify/notification.h"

#include "canvas/ui_error.h"
#include "ui/notify/notify_object.h"

ccUINotification::ccUINotification(ccUINotifyObject* object, Type type)
    : key_(object ? object->nodeKey_() : noKey), type_(type)
{
}

ccUINotification::ccUINotification(ccUINotifyObject* object, State const& before)
    : ccUINotification(object, stateAboutToChange)
{
  preChangeState_ = before;
}

ccUINotification::ccUINotification(ccUINotifyObject* object, State const& before, State const& after)
    : ccUINotification(object, stateChanged)
{
  preChangeState_ = before;
  postChangeState_ = after;
}

ccUINotification::State const& ccUINotification::preChangeState() const
{
  if (type_ != stateAboutToChange && type_ != stateChanged)
    throw ccUIError::BadParams();
  return preChangeState_;
}

ccUINotification::State const& ccUINotification::postChangeState() const
{
  if (type_ != stateChanged)
    throw ccUIError::BadParams();
  return postChangeState_;
}
