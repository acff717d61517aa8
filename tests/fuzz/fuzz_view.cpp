#include "tests/fuzz/fuzz_view.h"

#include "platform/app.h"
#include "platform/testing.h"

FuzzView::FuzzView(int depth)
{
  plat::InitOptions init;
  init.video = plat::InitOptions::headless;
  plat::init(init);  // the first call counts
  plat::testing::screen({96, 80}, depth);
  options.givenWidth = 64;
  options.givenHeight = 48;
  viewer = std::make_unique<ccViewer>(options, errors);
}
