// make_samples FOLDER: writes the sample images there.
#include "apps/common/picture_file.h"
#include "apps/make_samples/samples.h"

#include <iostream>

namespace {

bool report(std::string const& error)
{
  if (!error.empty())
    std::cerr << "make_samples: " << error << '\n';
  return error.empty();
}

}  // namespace

int main(int argc, char** argv)
{
  if (argc != 2) {
    std::cerr << "usage: make_samples FOLDER\n";
    return 2;
  }
  std::filesystem::path const folder(argv[1]);
  bool const written = report(cfWritePng(folder / samples::conveyor, cf_conveyorSample())) &&
                       report(cfWritePng(folder / samples::plate, cf_plateSample())) &&
                       report(cfWritePng(folder / samples::panel, cf_panelSample(), cf_panelBits)) &&
                       report(cfWritePng(folder / samples::caps, cf_capsSample()));
  return written ? 0 : 1;
}
