#include "canvas/graphic_props.h"

#include "foundation/archive.h"

namespace {

cc_Instantiator const exemplar("ccGraphicProps", []() -> ccPersistent* { return new ccGraphicProps(); });

}  // namespace

void ccGraphicProps::serialize_(ccArchive& ar, unsigned char version)
{
  if (version != 0)
    throw ccArchive::UnknownVersion("ccGraphicProps");
  ar || penColor_ || penWidth_ || penStyle_ || fill_ || joinStyle_ || capStyle_ || showDirection_ || showVertices_;
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
