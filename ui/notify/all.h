// Everything of ui/notify/ for applications.
#pragma once

#include "ui/notify/display_notifier.h"
#include "ui/notify/event_processor_state.h"
#include "ui/notify/listener_tag.h"
#include "ui/notify/notification.h"
#include "ui/notify/notify_object.h"
