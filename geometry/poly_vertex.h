// What a polygon records of a vertex and of the segment that leads to it. Points and sizes are in client units.
#pragma once

#include "foundation/vector.h"

#include <cstdint>

// The tolerance of a segment's length. It is the client's: the library keeps it and never looks into it.
class ccDimTol {
public:
  enum ceType : std::int32_t { eTypeDefault = 0 };

  constexpr ccDimTol() = default;
  constexpr ccDimTol(double lower, double upper, double nominal, ceType type)
      : lower_(lower), upper_(upper), nominal_(nominal), type_(type) {}
  static constexpr ccDimTol noSegment() { return ccDimTol(-1, -1, 0, eTypeDefault); }

  constexpr double lower() const { return lower_; }
  constexpr double upper() const { return upper_; }
  constexpr double nominal() const { return nominal_; }
  constexpr ceType type() const { return type_; }
  friend constexpr bool operator==(ccDimTol const& a, ccDimTol const& b)
  {
    return a.lower_ == b.lower_ && a.upper_ == b.upper_ && a.nominal_ == b.nominal_ && a.type_ == b.type_;
  }

private:
  double lower_ = 0, upper_ = 0, nominal_ = 0;
  ceType type_ = eTypeDefault;
};

// span and tol are those of the incoming segment. Vertex 0 of an open polygon has none: 0 and ccDimTol::noSegment().
struct ccSMDGDPolyVertex {
  ccPoint point;
  double roundingSize = 0;  // radius of the rounding circle
  ccRadian span;            // of the arc, positive where the angle grows; 0 is a line
  ccDimTol tol;

  friend bool operator==(ccSMDGDPolyVertex const& a, ccSMDGDPolyVertex const& b)
  {
    return a.point == b.point && a.roundingSize == b.roundingSize && a.span == b.span && a.tol == b.tol;
  }
};
