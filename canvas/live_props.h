// How live video is shown on a display. Plain values, copied to the live machine when it starts.
#pragma once

#include "foundation/callback.h"
#include "foundation/handle.h"
#include "foundation/thread.h"
#include "foundation/xform.h"

class ccLiveDisplayProps {
public:
  using PelbufferCallback = ccCallback1<void const*>;

  bool xformSet() const { return xformSet_; }  // a client transform was given
  // Client from image, for each frame. A map of determinant 0 throws ccMathError::Singular and changes nothing.
  ccXform<2> const& clientTransform() const { return clientTransform_; }
  void clientTransform(ccXform<2> const&);
  double frameRateInterval() const { return frameRateInterval_; }  // seconds of smoothing; 0: frames by the whole time
  void frameRateInterval(double v) { frameRateInterval_ = v; }
  bool useSoftwareLiveDisplay() const { return useSoftwareLiveDisplay_; }
  void useSoftwareLiveDisplay(bool v) { useSoftwareLiveDisplay_ = v; }
  bool displayOutput() const { return displayOutput_; }  // frames go to the display
  void displayOutput(bool v) { displayOutput_ = v; }
  double restartDelay() const { return restartDelay_; }  // seconds to sleep before each acquisition request
  void restartDelay(double v) { restartDelay_ = v; }
  bool makeLocal() const { return makeLocal_; }  // ask the fifo for local images
  void makeLocal(bool v) { makeLocal_ = v; }
  cePriority threadPriority() const { return threadPriority_; }  // of the worker thread
  void threadPriority(cePriority v) { threadPriority_ = v; }
  // Called on the worker thread with the address of each frame's pel buffer; null: none.
  ccPtrHandle<PelbufferCallback> const& pelbufferCallback() const { return pelbufferCallback_; }
  void pelbufferCallback(ccPtrHandle<PelbufferCallback> const& v) { pelbufferCallback_ = v; }

private:
  bool xformSet_ = false;
  ccXform<2> clientTransform_;
  double frameRateInterval_ = 0;
  bool useSoftwareLiveDisplay_ = false;
  bool displayOutput_ = true;
  double restartDelay_ = 0;
  bool makeLocal_ = false;
  cePriority threadPriority_ = cePriorityInherit;
  ccPtrHandle<PelbufferCallback> pelbufferCallback_;
};
