#include "canvas/graphic_props.h"

#include "foundation/archive.h"

namespace {

cc_Instantiator const exemplar("ccGraphicProps", []() -> ccPersistent* { return new ccGraphicProps(); });

}  // namespace

void ccGraphicProps::serialize_(ccArchive& ar, unsigned char version)
{
  if (version != 0)
    throw ccArchive::UnknownVersion("ccGraphicProps");
  // By way of a copy, so that what ends half-way changes nothing.
  ccGraphicProps moved(*this);
  ar || moved.penColor_ || moved.penWidth_ || moved.penStyle_ || moved.fill_ || moved.joinStyle_ || moved.capStyle_ ||
      moved.showDirection_ || moved.showVertices_;
  if (ar.isLoading())
    *this = moved;
}

void ccGraphicProps::dispatchSerialize(ccArchive& ar)
{
  if (ar.haveVisited(this, typeid(ccGraphicProps)))
    return;
  unsigned char version = 0;
  ar || version;
  serialize_(ar, version);
  ccPersistent::dispatchSerialize(ar);
  ar.setVisited(this, typeid(ccGraphicProps));
}

bool operator==(ccGraphicProps const& a, ccGraphicProps const& b)
{
  return a.penColor_ == b.penColor_ && a.penWidth_ == b.penWidth_ && a.penStyle_ == b.penStyle_ && a.fill_ == b.fill_ &&
         a.joinStyle_ == b.joinStyle_ && a.capStyle_ == b.capStyle_ && a.showDirection_ == b.showDirection_ &&
         a.showVertices_ == b.showVertices_;
}
