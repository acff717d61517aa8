// One recorded drawing command: what was called on the recording tablet, with copies of its arguments, and the layers
// that were given. It runs on each layer that the replay asks for, too.
#pragma once

#include "canvas/sketch.h"
#include "canvas/tablet.h"

#include <memory>
#include <utility>

class cc_SketchOp {
public:
  using Layers = cc_TabletEnums::Layers;

  explicit cc_SketchOp(Layers l) : layers_(l) {}
  cc_SketchOp(cc_SketchOp const&) = delete;
  cc_SketchOp& operator=(cc_SketchOp const&) = delete;
  virtual ~cc_SketchOp();
  void replay(ccUITablet&, Layers) const;

protected:
  virtual void run_(ccUITablet&, Layers) const = 0;

private:
  Layers layers_;
};

// call(tablet, layers) repeats the command.
template <class Call> class cc_SketchCall final : public cc_SketchOp {
public:
  cc_SketchCall(Layers l, Call&& call) : cc_SketchOp(l), call_(std::move(call)) {}

private:
  void run_(ccUITablet& t, Layers l) const override { call_(t, l); }

  Call call_;
};

template <class Call> void cf_record(ccUISketch& sketch, cc_TabletEnums::Layers l, Call call)
{
  sketch.append(std::make_shared<cc_SketchCall<Call> const>(l, std::move(call)));
}
