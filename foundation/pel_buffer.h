// Views of images. A buffer is a handle to a root, a window of it, an offset and a transform; copies share pels. All
// coordinates of the accessors are image coordinates: the window covers [offset, offset + size). Cutting a view keeps each
// pel's coordinates; setting the offset relabels them. Pels are unsynchronised; call mutating() before writing.
#pragma once

#include "foundation/pel_rect.h"
#include "foundation/pel_root.h"
#include "foundation/xform_base.h"

#include <algorithm>

template <class T> class ccPelBuffer_const {
public:
  ccPelBuffer_const() = default;  // unbound
  explicit ccPelBuffer_const(ccPtrHandle_const<ccPelRoot<T>> const& root) : root_(root)
  {
    if (root_)
      size_ = ccPair<long>(root_->width(), root_->height());
  }

  bool isBound() const { return root_.get() && root_.get()->isConnected(); }
  void setUnbound() { *this = ccPelBuffer_const(); }
  long width() const { return isBound() ? size_.x() : 0; }
  long height() const { return isBound() ? size_.y() : 0; }
  ccPair<long> size() const { return ccPair<long>(width(), height()); }
  ccPair<long> offset() const { return offset_; }
  void offset(ccPair<long> const& p) { offset_ = p; }
  ccPelRect window() const { return isBound() ? ccPelRect(offset_, size_) : ccPelRect(); }
  void window(ccPelRect const& r);  // cuts r to the present window; an empty result is unbound
  void window(long x, long y, long w, long h) { window(ccPelRect(x, y, w, h)); }
  ccPelBuffer_const cut(long x, long y, long w, long h) const;  // counted from the upper left pel, whatever the offset

  T getPel(long x, long y) const { return window().within(ccPair<long>(x, y)) ? *pelAddress(x, y) : T(); }
  T const* pelAddress(long x, long y) const { return pelAddress_(x, y); }  // unchecked
  T const* pointToOffset() const { return isBound() ? pelAddress_(offset_.x(), offset_.y()) : nullptr; }
  long rowStride() const { return root_.get() ? root_.get()->rowStride() : 0; }  // in pels
  ccPtrHandle_const<ccPelRoot<T>> const& root() const { return root_; }

  // Client coordinates are what the application measures in; the default map is the identity.
  ccPtrHandle_const<cc2XformBase> const& clientFromImageXformBase() const { return xform_; }
  void clientFromImageXformBase(ccPtrHandle_const<cc2XformBase> const& x) { xform_ = x; }
  void clientFromImageXform(ccXform<2> const& x) { xform_ = ccPtrHandle_const<cc2XformBase>(new cc2XformLinear(x)); }
  // The inverse, at the window's centre where the map is not linear. A null map throws ccBadPointer, a singular one
  // ccMathError::Singular.
  ccXform<2> imageFromClientXform() const;

protected:
  T* pelAddress_(long x, long y) const
  {
    return root_.get()->row(y - offset_.y() + corner_.y()) + (x - offset_.x() + corner_.x());
  }

private:
  ccPtrHandle_const<ccPelRoot<T>> root_;
  ccPair<long> corner_;  // upper left pel in the root
  ccPair<long> size_;
  ccPair<long> offset_;  // image coordinates of the upper left pel
  ccPtrHandle_const<cc2XformBase> xform_ = cc2XformLinear::identity();
};

template <class T> class ccPelBuffer : public ccPelBuffer_const<T> {
public:
  ccPelBuffer() = default;
  ccPelBuffer(long width, long height, long alignment = 8)
      : ccPelBuffer_const<T>(ccPtrHandle_const<ccPelRoot<T>>(new ccPelRoot<T>(width, height, alignment)))
  {
  }
  explicit ccPelBuffer(ccPtrHandle<ccPelRoot<T>> const& root) : ccPelBuffer_const<T>(root) {}

  T* pelAddress(long x, long y) const { return this->pelAddress_(x, y); }  // unchecked
  T* pointToOffset() const { return this->isBound() ? this->pelAddress_(this->offset().x(), this->offset().y()) : nullptr; }
  void setPel(long x, long y, T v) const
  {
    if (this->window().within(ccPair<long>(x, y)))
      *this->pelAddress_(x, y) = v;
  }
  void mutating() const
  {
    if (this->root())
      const_cast<ccPelRoot<T>*>(this->root().get())->mutating();
  }
};

template <class T> void ccPelBuffer_const<T>::window(ccPelRect const& r)
{
  ccPelRect const w = r & window();
  if (w.isNull()) {
    setUnbound();
    return;
  }
  corner_ += w.ul() - offset_;
  offset_ = w.ul();
  size_ = w.sz();
}

template <class T> ccPelBuffer_const<T> ccPelBuffer_const<T>::cut(long x, long y, long w, long h) const
{
  ccPelBuffer_const view(*this);
  view.offset_ = ccPair<long>();
  view.window(ccPelRect(x, y, w, h));
  if (view.root_)
    view.offset_ += offset_;
  return view;
}

template <class T> ccXform<2> ccPelBuffer_const<T>::imageFromClientXform() const
{
  ccVector<2> const centre(static_cast<double>(offset_.x()) + static_cast<double>(width()) / 2,
                           static_cast<double>(offset_.y()) + static_cast<double>(height()) / 2);
  return xform_->linearXform(centre).inverse();
}
