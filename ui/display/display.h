// The image display: a frame that holds at most one image, shows it zoomed and panned, and carries the operator's graphics
// in three stacked coordinate frames. Abstract in its platform side.
//
// Zoom is the number of display pels for each image pel. Pan is in image pels: with pan (0,0) the image's centre sits in the
// centre of the display, whatever the zoom. All operations but removeImage, colorMapEx() and the plain accessors take the
// root's mutex; images may arrive on any thread.
#pragma once

#include "canvas/color.h"
#include "foundation/exception.h"
#include "foundation/pel_buffer.h"
#include "ui/core/control_frame.h"
#include "ui/core/nested_coord_frame.h"
#include "ui/core/shapes_frame.h"

class ccAcqFifo;
class ccAcqImage;
class ccLiveDisplayProps;

class ccDisplay : public ccUIControlFrame, public ccRepBase {
public:
  // Display coordinates are pels of the display, image coordinates pels of the image's root buffer, client coordinates what
  // the image's client-from-image transform makes of them.
  enum CoordinateSystem : std::int32_t { displayCoords, imageCoords, clientCoords };
  enum DisplayFormat : std::int32_t { format8, format15, format16, format24, format32 };
  enum MouseMode : std::int32_t { pointerMode, panMode, zoomInMode, zoomOutMode };
  enum overlayState : std::int32_t { overlayOn, chromaOn, overlayOff, chromaOff, noOverlay };

  // An acquisition fifo that cannot serve live display.
  class BadFifo : public ccException {
    KRS_EXCEPTION
  };

  ccDisplay(ccUIFrame* parent, ccUIRect const&);
  ~ccDisplay() override;

  virtual DisplayFormat displayFormat();  // the depth of the scope's pels
  virtual bool hasImage();
  virtual bool hasImage8();
  virtual bool hasImage16();  // a 16-bit colour image
  virtual bool hasImage32();
  virtual ccPair<long> imageSize();
  virtual ccPair<long> imageOffset();
  virtual ccPair<long> clientArea();
  virtual void getPassThroughValue(ccPackedRGB32Pel&);
  virtual void getPassThroughValue(ccPackedRGB16Pel&);
  virtual void getPassThroughValue(unsigned char&);
  virtual void mouseMode(MouseMode);
  virtual std::int64_t selectAreaStart(CoordinateSystem, ccPelRect const&, ccColor const&) = 0;
  virtual ccPelRect selectAreaEnd(std::int64_t handle) = 0;
  virtual ccPelRect selectArea(CoordinateSystem, ccPelRect const&, char const* prompt, ccColor const&) = 0;
  virtual std::int64_t selectPointStart(CoordinateSystem, ccPair<double> const&, ccColor const&) = 0;
  virtual ccPair<double> selectPointEnd(std::int64_t handle) = 0;
  virtual ccPair<double> selectPoint(CoordinateSystem, ccPair<double> const&, char const* prompt, ccColor const&) = 0;
  virtual void enableOverlay(overlayState);  // ccUIError::NotImplemented, as the next
  virtual overlayState enableOverlay();
  virtual bool canBlink();
  virtual bool enableBlink();
  virtual bool disableBlink();
  virtual double blinkRate();
  virtual void blinkRate(double);
  virtual std::vector<ccColor> blinkColor();
  virtual void blinkColor(std::vector<ccColor> const&);
  virtual bool startLiveDisplay(ccAcqFifo*, ccLiveDisplayProps*);
  virtual bool startLiveDisplay(ccAcqFifo*);
  virtual void stopLiveDisplay();
  virtual bool isLiveEnabled();
  virtual void waitForVerticalBlank(bool);
  virtual void getDisplayedImage(ccPelBuffer<unsigned char>&, Layers) = 0;
  virtual void getDisplayedImage(ccPelBuffer<ccPackedRGB16Pel>&, Layers) = 0;
  virtual void getDisplayedImage(ccPelBuffer<ccPackedRGB32Pel>&, Layers) = 0;
  virtual double liveFrameRate();
  virtual bool hasImage16Grey();

protected:
  // Hooks, all empty by default.
  virtual void panChanged();
  virtual void magChanged();
  virtual void imageChanged();  // the image is stored, the maps have not changed yet
  virtual void mouseModeChanged();
  virtual void colorMapChanged();
  virtual void imageMapChanged();
  virtual void updatePanRanges();

private:
  virtual bool askDerivedDisplayToDoFullDraw();

public:
  // Images. The display keeps a view; the pels stay the caller's. A colour image at another depth than its own is dropped.
  // A buffer whose transform handle is null throws ccBadPointer, a singular transform ccMathError::Singular, both before
  // anything has changed. An image that arrives while the display is dragged is dropped.
  void image(ccPelBuffer_const<unsigned char> const&, bool mapPels);
  void image(ccPelBuffer_const<unsigned short> const&, long bits);
  void image(ccPelBuffer_const<ccPackedRGB16Pel> const&);
  void image(ccPelBuffer_const<ccPackedRGB32Pel> const&);
  bool image(ccPtrHandle<ccAcqImage>, ccXform<2>* clientFromImage);
  void removeImage();
  ccPelBuffer_const<unsigned char> const& image8() const { return image8_; }
  ccPelBuffer_const<unsigned short> const& image16() const { return image16_; }
  ccPelBuffer_const<ccPackedRGB16Pel> const& imageRGB16() const { return imageRGB16_; }
  ccPelBuffer_const<ccPackedRGB32Pel> const& imageRGB32() const { return imageRGB32_; }

  // Zoom and pan.
  void mag(long);  // n is n-fold, -n one n-th; 0 is 1, the limit is 65536
  long mag();
  void magExact(double);  // negative values are ignored; the shorter edge of the image stays at least 8 pels long
  double magExact();
  void fit();       // the largest whole magnification or reduction that shows all
  void fitExact();
  void pan(ccVector<2> const&);  // clamped to the limits
  ccVector<2> pan() const { return pan_; }
  void panDelta(ccPair<long> const& pels);
  ccPair<double> minPan() const { return minPan_; }
  void minPan(ccPair<double> const&);
  ccPair<double> maxPan() const { return maxPan_; }
  void maxPan(ccPair<double> const&);
  bool defaultPan() const { return defaultPan_; }
  void defaultPan(bool on) { defaultPan_ = on; }  // compute the limits from the sizes

  // Drawing control; calls must balance.
  void enableDrawing(bool redraw);
  void disableDrawing();
  bool drawingDisabled() const { return drawingDisabled_; }

  // Colour maps. colorMap fills palette slots 10 to 240, colorMapEx turns pel values into colours at 15 bits and more: 256,
  // 1024, 4096 or 65536 entries, others throw ccUIError::InvalidColorMapSize.
  void colorMap(std::vector<ccRGB> const& map, long start);
  std::vector<ccRGB> colorMap();
  void colorMapEx(std::vector<ccRGB> const&);
  std::vector<ccRGB> const& colorMapEx() const { return colorMapEx_; }
  std::vector<ccRGB> overlayColorMap();  // ccUIError::NotAvailable without overlay support, NotEnabled while off
  void clearColorMap();

  // Between coordinate systems, in doubles. Display coordinates are pels from the display's upper left corner.
  ccPoint displayToImage(ccPoint const&);
  ccPoint imageToDisplay(ccPoint const&);
  ccPoint displayToClient(ccPoint const&);
  ccPoint clientToDisplay(ccPoint const&);

  // Interaction.
  MouseMode mouseMode() const { return mouseMode_; }
  void addShape(ccUIShapes*, CoordinateSystem);
  bool removeShape(ccUIShapes*);  // not deleted; false if it isn't in one of the three frames
  ccUIShapesFrame* shapesFrame(CoordinateSystem);  // null for other values
  ccUISketch const& getSketch(CoordinateSystem);
  void drawSketch(ccUISketch const&, CoordinateSystem);
  void drawSketch(ccUISketch const&, CoordinateSystem, ccRect const& clip);
  void drawSketchFast(ccUISketch const&, CoordinateSystem);  // not stored: the next redraw loses it
  void eraseSketch(CoordinateSystem);
  void grid(long);  // spacing of grid lines in image pels; below 1 is off
  long grid() const { return grid_; }
  void subpixelGrid(long);  // divisions of one pel; below 2 is off
  long subpixelGrid() const { return subpixelGrid_; }
  ccColor const& gridColor() const { return gridColor_; }
  void gridColor(ccColor const& c) { gridColor_ = c; }
  ccColor const& subpixelGridColor() const { return subpixelGridColor_; }
  void subpixelGridColor(ccColor const& c) { subpixelGridColor_ = c; }
  ccPelRect selectArea(CoordinateSystem, char const* prompt, ccColor const&);
  ccPair<double> selectPoint(CoordinateSystem, char const* prompt, ccColor const&);

  void select(States, bool nested) override;
  void disable(States, bool nested) override;
  void redraw_() override;

protected:
  void updateDisplay(Layers);
  void endLostPan_();  // the graphics come back if a drag of the image has ended without a call
  void resize_() override;
  void click_() override;
  void dblClick_() override;
  void dragStart_(ccPair<long> const& at) override;
  void dragAnimate_(ccPair<long> const& from, ccPair<long> const& to) override;
  void dragStop_(ccPair<long> const& from, ccPair<long> const& to) override;
  void mouseEnter_() override;
  void idleMouseEnter_() override;
  void mouseLeave_() override;
  void mouseMove_(ccPair<long> const&) override;
  void mouseRight_(ccPair<long> const&, ccMouseEvent::Event, unsigned long keys) override;
  void keyboard_(ccKeyboardEvent const&) override;

private:
  template <class T> struct cs_Arrival;  // an image that was checked and may be stored
  template <class T> bool arrive_(ccPelBuffer_const<T> const&, cs_Arrival<T>&);
  template <class T> void store_(cs_Arrival<T>&, ccPelBuffer_const<T>& member, bool sizeChanged, bool mapPels);
  void imageLowLevel(bool sizeChanged, long w, long h, bool bound, ccXform<2> const& imageFromClient);
  void rebuildMaps_();
  void windowMap_(ccPelBuffer_const<unsigned short> const&, long bits);
  void defaultPanRanges_(long w, long h);
  void paintPanned_();
  void drawImage();
  void drawGrids_();
  // Keep what they raise for as long as they live, whatever a hook does to the display meanwhile; see display_hold.h.
  friend class cc_DisplayHold;
  friend class cc_DrawingOff;
  friend class cc_OverlayRepaint;
  void owe_() noexcept;  // all of it is repainted by the next update
  void hideOpaqueKids_();
  void showOpaqueKids_();
  template <class Each> void onFrames_(Each const&);  // the display itself and its three frames
  void showPalette_();
  void idleMouseMode(MouseMode);
  void cursor_(int);
  void centreOnAnchor_();
  void leavePan_();
  void handleDraggingXformChange();

  cc2XformCache xformCache_;
  ccUIShapesFrame* displayFrame_ = nullptr;
  ccUINestedCoordFrame* imageFrame_ = nullptr;
  ccUINestedCoordFrame* clientFrame_ = nullptr;
  bool drawingDisabled_ = false;
  MouseMode mouseMode_ = pointerMode;
  MouseMode savedMouseMode_ = pointerMode;
  std::int32_t panKeyState_ = 0;  // 1 the pan key changed the mode, 2 it was released in a drag
  std::vector<std::pair<ccUIObject*, std::uint32_t>> outOfSight_;  // kids that the image would cover in a drag, and keys
  bool panning_ = false;          // the operator drags the image: frames are hidden, the frame sizer is held
  ccPair<double> minPan_, maxPan_;
  bool defaultPan_ = true;
  ccVector<2> pan_;
  ccPelBuffer_const<unsigned char> image8_;
  ccPelBuffer_const<unsigned short> image16_;
  ccPelBuffer_const<ccPackedRGB16Pel> imageRGB16_;
  ccPelBuffer_const<ccPackedRGB32Pel> imageRGB32_;
  bool mapPels_ = false;
  std::vector<ccRGB> colorMap_;
  std::vector<ccRGB> colorMapEx_;
  std::vector<ccRGB> scratchMap_;  // the next window map of a 16-bit image
  bool mapOwed_ = false;           // the root may not have the map that is stored here
  long grid_ = -1;
  long subpixelGrid_ = -4;
  ccColor gridColor_ = ccColor::blueColor();
  ccColor subpixelGridColor_ = ccColor::dkGreenColor();
  std::vector<ccColor> blinkColor_;
};
