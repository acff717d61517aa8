// Declares the classes of this folder, and those shapes of geometry/ that drawing takes.
#pragma once

class ccColor;
class ccFlagStack;
class ccGraphicProps;
class ccImageConverter;
class ccLiveDisplayProps;
class ccRLEBuffer;
class ccUIBitmap;
class ccUIFormat;
class ccUIRect;
class ccUIScope;
class ccUISketch;
class ccUITablet;
struct ccRGB;

class cc2Wireframe;
class ccAffineRectangle;
class ccBezierCurve;
class ccCircle;
class ccCoordAxes;
class ccCubicSpline;
class ccEllipse;
class ccEllipse2;
class ccEllipseAnnulusSection;
class ccEllipseArc;
class ccEllipseArc2;
class ccGenRect;
class ccGenShape;
class ccGraphic;
class ccLine;
class ccLineSeg;
class ccPointSet;
class ccPolygon;
class ccPolyline;
class ccRect;
class ccShape;
