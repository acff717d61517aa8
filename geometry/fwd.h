// Declares the classes of this folder.
#pragma once

class cc2Wireframe;
class ccAffineRectangle;
class ccBezierCurve;
class ccBezierPath;
class ccCircle;
class ccCoordAxes;
class ccCubicSpline;
class ccEllipse;
class ccEllipse2;
class ccEllipseAnnulus;
class ccEllipseAnnulusSection;
class ccEllipseArc;
class ccEllipseArc2;
class ccGenAnnulus;
class ccGenPoly;
class ccGenRect;
class ccLine;
class ccLineSeg;
class ccOutlineSink;
class ccPointSet;
class ccPolygon;
class ccPolyline;
class ccRect;
class ccShape;
class ccShapeTree;
