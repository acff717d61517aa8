// Declares the classes of this folder, and the frame sizer that the root hands out.
#pragma once

class cc_NodeRef;
class cc_NodeWalk;
class cc_TabletRef;
class ccKeyboardEvent;
class ccMouseEvent;
class ccUIClientFrame;
class ccUIControlFrame;
class ccUIEventProcessor;
class ccUIForm;
class ccUIFrame;
class ccUIFrameSizer;
class ccUINestedCoordFrame;
class ccUIObject;
class ccUIRootObject;
class ccUIShapes;
class ccUIShapesFrame;
