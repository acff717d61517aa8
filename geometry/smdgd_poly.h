// A polygon as a list of vertex records, each with the segment that leads to it: the form in which polygons are edited. It
// holds the same as a cc2Wireframe, and a name.
#pragma once

#include "geometry/wireframe.h"

#include <string>

class ccSMDGDPoly {
public:
  explicit ccSMDGDPoly(std::string name = "poly") : name_(std::move(name)) {}  // open and empty
  ccSMDGDPoly(cc2Wireframe const& wire, std::string name) : wire_(wire), name_(std::move(name)) {}
  // Closed: (0, -height/2), (width/2, height/2), (-width/2, height/2) around the centre. Sizes may be 0, not negative.
  static ccSMDGDPoly triangle(double width, double height, ccVector<2> const& center);

  std::string const& name() const { return name_; }
  void name(std::string name) { name_ = std::move(name); }
  bool isOpen() const { return wire_.isOpen(); }
  void open() { wire_.open(); }
  void close(ccRadian span = ccRadian(0), ccDimTol const& tol = ccDimTol()) { wire_.close(span, tol); }
  bool isPolarityReversed() const { return wire_.isPolarityReversed(); }
  void polarity(bool reversed) { wire_.polarity(reversed); }

  long numVertices() const { return wire_.numVertices(); }
  long numSegments() const { return wire_.numSegments(); }
  // With wrap i is taken modulo the number of vertices, also from below 0; an empty polygon throws ccShapesError::BadParams.
  ccSMDGDPolyVertex const& vertex(long i, bool wrap = false) const;
  // Vertex 0 of an open polygon stays without span and tolerance.
  void vertex(long i, ccSMDGDPolyVertex const&);
  void addVertex(ccSMDGDPolyVertex const&);  // appends
  std::vector<ccSMDGDPolyVertex> const& vertices() const { return wire_.vertices(); }
  cc2Wireframe const& wireframe() const { return wire_; }

  friend bool operator==(ccSMDGDPoly const& a, ccSMDGDPoly const& b) { return a.wire_ == b.wire_ && a.name_ == b.name_; }

private:
  cc2Wireframe wire_;
  std::string name_;
};
