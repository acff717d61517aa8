// Shapes with curves, fills and vertices. This scope does not paint them, and so reports no change for them.
#include "backend/scope/win32_scope.h"

void ccWin32UIScope::draw(ccGenShape const&, ccColor const&) {}
void ccWin32UIScope::draw(ccEllipseArc const&, ccGraphicProps const&) {}
void ccWin32UIScope::draw(ccEllipse const&, ccGraphicProps const&) {}
void ccWin32UIScope::draw(ccPolygon const&, ccGraphicProps const&) {}
void ccWin32UIScope::draw(ccGraphic const&, ccGraphicProps const&) {}
void ccWin32UIScope::draw(ccPolyline const&, ccGraphicProps const&) {}
void ccWin32UIScope::draw(ccGenRect const&, ccGraphicProps const&) {}
void ccWin32UIScope::draw(ccEllipseArc2 const&, ccGraphicProps const&) {}
void ccWin32UIScope::draw(ccEllipse2 const&, ccGraphicProps const&) {}
