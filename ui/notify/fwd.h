// Declares the classes of this folder.
#pragma once

class ccUIEventProcessorState;
class ccUINotification;
class ccUINotifyListenerTag;
class ccUINotifyObject;
class ccUIObjectState;
