// Declares the classes of this folder.
#pragma once

class ccUIHandle;
class ccUIIcon;
class ccUILabel;
class ccUIManShape;
class ccUIPointIcon;
class ccUIPointShapeBase;
class ccUIRLEBuffer;
