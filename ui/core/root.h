// The top of one tree: owns the tree's mutex, its event processor, a colour table and three standing planes of frames.
#pragma once

#include "foundation/resource.h"
#include "ui/core/control_frame.h"

#include <list>
#include <memory>

struct cc_RootMutex;
struct cc_RootMutexRetirer {
  void operator()(cc_RootMutex*) const noexcept;
};

class ccUIRootObject : public ccUIControlFrame {
public:
  enum Cursor : std::int32_t { arrowCursor, handCursor, zoomInCursor, zoomOutCursor, panCursor, grabCursor, waitCursor };

  ccUIRootObject(ccUIScope* image, ccUIScope* overlay);
  ~ccUIRootObject() override;

  ccUIRootObject* rootObject(bool) override { return this; }

  virtual std::vector<ccRGB> colorMap() = 0;  // the palette of depth 8
  virtual void colorMap(std::vector<ccRGB> const&) = 0;
  virtual std::vector<ccRGB> colorMapEx() = 0;  // pel values to colours at 15 bits and more
  virtual void colorMapEx(std::vector<ccRGB> const&) = 0;
  virtual std::vector<ccRGB> systemColorMap();  // 256 entries; 10 to 240 a grey ramp
  virtual void systemColorMap(std::vector<ccRGB> const&);  // not 256 entries: ccUIError::InvalidColorMapSize
  virtual std::vector<ccRGB> const& overlayColorMap() = 0;
  virtual void reservedColor(ccRGB const&, long index);  // indices 241 to 245; others are ignored
  virtual void rootSet(ccUIRect const&, ccColor const&, ccUITablet::Layers);
  virtual void rootImage(ccPelBuffer_const<ccPackedRGB16Pel> const&, ccUIRect const&, ccUISketch const&,
                         ccUITablet::Layers);
  virtual void rootImage(ccPelBuffer_const<unsigned char> const&, ccUIRect const&, ccUISketch const&,
                         ccUITablet::Layers);

  ccRGB reservedColor(long index) const;  // black outside 241 to 245
  ccMutex& mutex() { return mutex_; }  // lives until the last call that holds it has left, even if the root has not
  ccUIEventProcessor* eventProcessor() const { return eventProcessor_.get(); }
  static std::list<ccUIRootObject*>& roots();  // guarded by uiMutex()
  ccUIControlFrame* groundPlane();
  ccUIControlFrame* subPlane();
  ccUIControlFrame* floatingPlane();
  ccUIFrameSizer* frameSizer();  // built on first use
  Cursor cursor() const { return cursor_; }
  void cursor(Cursor);
  ccUIRect const& videoScope() const { return videoScope_; }
  void videoScope(ccUIRect const& r) { videoScope_ = r; }
  void globalUpdate();  // flushes what has changed on both layers

  void redraw_() override;

protected:
  virtual void setCursor(Cursor) = 0;

private:
  friend class ccUIFrame;
  friend class ccUIObject;
  friend class ccUIShapes;
  friend class ccDisplay;
  friend class ccUIFrameSizer;
  void createPlanes();
  // Steps of the frame sizer; defined with it, so that nothing here includes the rooms above.
  void attachFrameSizer_(ccUIFrame*);           // builds it if need be
  ccUIFrame* frameSizerAttachedTo_() const;     // null also while there is none
  void refreshFrameSizer_();                    // builds it if need be; its handles take their places
  void holdFrameSizer_(bool hold);              // pushes false on its drawEnabled_, or pops
  void deleteFrameSizer_();

  ccUIRect videoScope_;
  ccUIFrameSizer* frameSizer_ = nullptr;
  std::shared_ptr<ccUIEventProcessor> eventProcessor_;
  Cursor cursor_ = arrowCursor;
  std::vector<ccRGB> colorMap_;
  ccUIControlFrame* subPlane_ = nullptr;
  ccUIControlFrame* groundPlane_ = nullptr;
  ccUIControlFrame* floatingPlane_ = nullptr;
  std::list<ccUIRootObject*>::iterator rootsPos_;
  std::unique_ptr<cc_RootMutex, cc_RootMutexRetirer> ownMutex_;
  ccMutex& mutex_;
};
