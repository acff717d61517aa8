// A sector of an elliptical ring: two arcs over the same unit angles and, if wanted, the straight edges between their ends.
#pragma once

#include "geometry/annulus.h"
#include "geometry/ellipse_arc.h"

class ccEllipseAnnulusSection : public ccShape {
public:
  ccEllipseAnnulusSection() = default;
  // Unit angles, kept as given; equal ones modulo a full turn are an empty span. reversed: the logical outer edge lies on the
  // first ellipse. forward: the logical direction runs from start to stop. ends: the straight edges belong to the outline.
  ccEllipseAnnulusSection(ccPoint const& center, double firstRadius, double secondRadius, ccRadian start, ccRadian stop,
                          bool reversed = true, bool forward = true, bool ends = true);
  ccEllipseAnnulusSection(ccEllipse const& first, ccEllipse const& second, ccRadian start, ccRadian stop,
                          bool reversed = true, bool forward = true, bool ends = true);
  ccEllipseAnnulusSection(ccEllipseAnnulus const&, ccRadian start, ccRadian stop, bool reversed = true,
                          bool forward = true, bool ends = true);

  ccPoint center() const { return ring_.center(); }
  ccEllipse const& first() const { return ring_.first(); }
  ccEllipse const& second() const { return ring_.second(); }
  ccEllipseAnnulus const& annulus() const { return ring_; }
  ccRadian start() const { return start_; }
  void start(ccRadian);
  ccRadian stop() const { return stop_; }
  void stop(ccRadian);
  bool reversed() const { return reversed_; }
  void reversed(bool b) { reversed_ = b; }
  bool forward() const { return forward_; }
  void forward(bool b) { forward_ = b; }
  bool ends() const { return ends_; }
  void ends(bool b) { ends_ = b; }

  ccRadian span() const;  // in [0, full circle); within 1e-12 of a full turn it is empty
  ccRadian mid() const { return start_ + span() / 2; }
  ccPoint middle() const;                      // half way between both arcs at mid()
  ccEllipseArc2 firstArc() const;              // from start to stop
  ccEllipseArc2 secondArc() const;
  ccEllipseAnnulusSection map(ccXform<2> const&) const;
  friend bool operator==(ccEllipseAnnulusSection const& a, ccEllipseAnnulusSection const& b)
  {
    return a.ring_ == b.ring_ && a.start_ == b.start_ && a.stop_ == b.stop_ && a.reversed_ == b.reversed_ &&
           a.forward_ == b.forward_ && a.ends_ == b.ends_;
  }

  double distToPoint(ccVector<2> const& p) const { return distanceToPoint(p); }
  double distanceToPoint(ccVector<2> const&) const override;
  ccRect encloseRect() const override;
  void outline(ccOutlineSink&) const override;

protected:
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

private:
  ccEllipseAnnulus ring_;
  ccRadian start_, stop_;
  bool reversed_ = true, forward_ = true, ends_ = true;
};

// The section after its warp handle was dragged from h to dragged, both client positions: the curvature changes, thickness,
// middle and outer arc stay. No radius passes maxRadius, the inner one stays at least minRadius; empty where that cannot be.
std::optional<ccEllipseAnnulusSection> cfSectionWarp(ccEllipseAnnulusSection const&, ccPoint const& h,
                                                     ccPoint const& dragged, double maxRadius, double minRadius);
// The section turned about its middle as a rigid body.
ccEllipseAnnulusSection cfSectionTurn(ccEllipseAnnulusSection const&, ccRadian by);
// The section with one of its ellipses scaled about the centre. Empty if the factor is negative or not finite.
std::optional<ccEllipseAnnulusSection> cfSectionSize(ccEllipseAnnulusSection const&, bool first, double factor);
