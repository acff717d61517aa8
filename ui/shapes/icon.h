// Pictures at a point: a run-length picture, and an icon with a map of where it is touched.
#pragma once

#include "canvas/rle_buffer.h"
#include "ui/shapes/point_shape.h"

#include <vector>

class ccUIRLEBuffer : public ccUIPointShapeBase {
public:
  explicit ccUIRLEBuffer(ccUIObject* parent = nullptr);
  ~ccUIRLEBuffer() override;

  void rleBuffer(ccRLEBuffer const&);
  ccPoint const& origin() const { return origin_; }  // what of the picture lies on pos(), in its pels
  void origin(ccPoint const&);
  void colorMap(std::vector<unsigned char>&);        // pel values to palette indices; the caller's vector is emptied
  unsigned char clientColor() const { return clientColor_; }
  void clientColor(unsigned char);                   // the entry of the map that takes the colour of the shape
  bool useClientColor() const { return useClientColor_; }
  void useClientColor(bool);
  unsigned char passColor() const { return passColor_; }
  void passColor(unsigned char);                     // the pel value that is see-through
  bool passThrough() const { return passThrough_; }
  void passThrough(bool);
  bool dontScale() const { return dontScale_; }
  void dontScale(bool);                              // keeps its pels at every zoom

  bool isTouched(ccVector<2> const&, double scale) override;  // where it is drawn

protected:
  void draw_(ccUITablet&, ccColor const&, DrawMode) override;

  // Where a place of the tablet lies in the picture, by the rounding with which it is drawn; false outside all numbers.
  bool pictureCoords_(ccVector<2> const&, ccPair<long>& at);
  ccRLEBuffer const& picture_() const { return rle_; }
  // The same without a redraw.
  void store_(ccRLEBuffer const& picture) { rle_ = picture; }
  void store_(ccPoint const& origin) { origin_ = origin; }
  void store_(std::vector<unsigned char>& map) { colorMap_.swap(map); }
  void redraw_(bool erase);

private:
  ccVector<2> upperLeft_(ccUITablet const&);

  ccRLEBuffer rle_;
  ccPoint origin_;
  std::vector<unsigned char> colorMap_;
  unsigned char clientColor_ = 0;
  unsigned char passColor_ = 0;
  bool useClientColor_ = false;
  bool passThrough_ = false;
  bool dontScale_ = false;
};

class ccUIIcon : public ccUIRLEBuffer {
public:
  explicit ccUIIcon(ccUIObject* parent = nullptr);

  ccRLEBuffer const& icon() const { return picture_(); }
  void icon(ccRLEBuffer const& picture) { rleBuffer(picture); }
  // A map as for ccUITablet::iconTouched, kept by the caller; the origin is the place in it that lies on pos(). A map without a
  // second separator counts as none, and then the picture is asked.
  void touchMap(char const* map, ccPair<long> const& origin);

  bool isTouched(ccVector<2> const&, double scale) override;

private:
  char const* touchMap_ = nullptr;
  ccPair<long> touchOrigin_;
  long touchStride_ = 0;
};
