// A build without windows on a real screen: everything runs headless.
#include "platform/portable/video.h"

namespace plat::portable {

Ptr<Video> makeWindowVideo() { return nullptr; }

}  // namespace plat::portable
