// krsview: shows images in a window, or headless.
#include "apps/krsview/options.h"
#include "apps/krsview/viewer.h"
#include "platform/app.h"
#include "platform/testing.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

namespace {

constexpr char const* kVersion = "krsview " KRS_VERSION;
enum ExitStatus { allWell = 0, badOption = 1, badFile = 2 };

// Beside an installed program, else in the source tree.
std::string cf_samplesFolder()
{
  std::error_code error;
  auto const program = std::filesystem::read_symlink("/proc/self/exe", error);
  if (!error) {
    auto const installed = program.parent_path().parent_path() / "share" / "krsdisp" / "samples";
    if (std::filesystem::is_directory(installed, error))
      return installed.string();
  }
  return KRS_SAMPLES_DIR;
}

int cf_view(ccViewOptions options)
{
  if (options.images.empty())
    options.images.push_back(cf_samplesFolder());
  plat::InitOptions init;
  init.video = plat::InitOptions::headless;
  init.depth = options.depth;
  // A display is never larger than its screen.
  init.screen = {static_cast<plat::i32>(std::max(options.width, 1280L)),
                 static_cast<plat::i32>(std::max(options.height, 1024L))};
  if (!plat::init(init)) {
    std::cerr << "krsview: cannot start a headless screen\n";
    return badOption;
  }
  ccViewer viewer(options, std::cerr);
  viewer.open(options.images);
  plat::testing::drain();
  int status = allWell;
  if (viewer.showsImage()) {
    if (options.info)
      std::cout << viewer.info() << std::endl;
    if (!options.shot.empty())
      if (std::string const error = viewer.writeShot(options.shot); !error.empty()) {
        std::cerr << "krsview: " << error << "\n";
        status = badOption;
      }
  }
  viewer.checkTheRest();
  if (status == allWell && viewer.anyFailed())
    status = badFile;
  return status;
}

}  // namespace

int main(int count, char** values)
{
  ccViewOptions options;
  std::string const wrong = cfParseViewOptions({values + 1, values + count}, options);
  if (!wrong.empty()) {
    std::cerr << "krsview: " << wrong << " (--help tells more)\n";
    return badOption;
  }
  if (options.help) {
    std::cout << cfViewHelp();
    return allWell;
  }
  if (options.version) {
    std::cout << kVersion << "\n";
    return allWell;
  }
  try {
    return cf_view(options);
  } catch (std::exception const& e) {
    std::cerr << "krsview: " << e.what() << "\n";
    return badOption;
  }
}
