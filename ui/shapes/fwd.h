// Declares the classes of this folder.
#pragma once

class ccUIHandle;
class ccUIIcon;
class ccUILabel;
class ccUILine;
class ccUILineSeg;
class ccUIManShape;
class ccUIPointIcon;
class ccUIPointShapeBase;
class ccUIRLEBuffer;
