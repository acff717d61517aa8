// Declares the classes of this folder.
#pragma once

class ccUIDisplayNotifier;
class ccUIEventProcessorState;
class ccUINotification;
class ccUINotifyListenerTag;
class ccUINotifyObject;
class ccUIObjectState;
