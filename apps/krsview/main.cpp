// krsview: shows images in a window, or headless.
#include "apps/common/error_line.h"
#include "apps/krsview/help.h"
#include "apps/krsview/options.h"
#include "apps/krsview/script.h"
#include "apps/krsview/viewer.h"
#include "platform/app.h"
#include "platform/testing.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

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

// Opens windows where that is asked for and possible, else a screen in memory. True: windows.
bool cf_startWindows(ccViewOptions const& options)
{
  plat::InitOptions init;
  if (!options.headless) {
    init.video = plat::InitOptions::window;
    if (plat::init(init))
      return true;
    std::cerr << "krsview: no display to open a window on; working headless\n";
  }
  init.video = plat::InitOptions::headless;
  init.depth = options.depth;
  // A display is never larger than its screen.
  init.screen = {static_cast<plat::i32>(std::max(options.width(), 1280L)),
                 static_cast<plat::i32>(std::max(options.height(), 1024L))};
  if (!plat::init(init))
    throw std::runtime_error("cannot start a headless screen");
  return false;
}

// The pictures of all pages; the folder is made if there is none.
int cf_writePages(ccViewer& viewer, std::filesystem::path const& folder)
{
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  for (long i = 0; i < viewer.gallery()->size(); ++i) {
    viewer.gallery()->show(i);
    plat::testing::drain();
    std::filesystem::path const file = folder / ("gallery_" + viewer.gallery()->name() + ".png");
    if (std::string const failed = viewer.writeShot(file.string()); !failed.empty()) {
      std::cerr << "krsview: " << failed << "\n";
      return badOption;
    }
  }
  return allWell;
}

int cf_view(ccViewOptions options)
{
  // Before any window opens: a drawing is shown whole or not at all.
  std::vector<ccDrawing> drawings;
  for (std::string const& file : options.draw) {
    drawings.push_back(cfReadDrawFile(file));
    if (!drawings.back()) {
      std::cerr << "krsview: " << drawings.back().error << "\n";
      return badFile;
    }
  }
  if (options.images.empty() && !options.gallery)
    options.images.push_back(cf_samplesFolder());
  bool const headless = !cf_startWindows(options);
  ccViewer viewer(options, std::cerr);
  if (options.gallery && !options.page.empty() && !viewer.showPage(options.page)) {
    std::cerr << "krsview: no page of the gallery has the name " << cf_quoted(options.page) << "; there are";
    for (long i = 0; i < viewer.gallery()->size(); ++i)
      std::cerr << (i == 0 ? " " : ", ") << viewer.gallery()->name(i);
    std::cerr << "\n";
    return badOption;
  }
  if (!options.pages.empty())
    return cf_writePages(viewer, options.pages);
  viewer.draw(drawings);
  viewer.open(options.images);
  plat::testing::drain();
  if (!options.script.empty()) {
    ccViewScript script(viewer, std::cout, std::cerr, headless);
    bool const fromInput = options.script == "-";
    std::ifstream file;
    if (!fromInput) {
      file.open(options.script);
      if (!file) {
        std::cerr << "krsview: cannot read the script " << cf_quoted(options.script) << "\n";
        return badOption;
      }
    }
    if (int const failed = script.run(fromInput ? std::cin : file, fromInput); failed != 0)
      return failed;
  } else if (!headless && options.shot.empty() && !options.info)
    plat::run();
  else if (!headless && options.quitAfter)
    plat::run();
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
    std::cerr << cf_errorLine("krsview", e.what()) << "\n";
    return badOption;
  }
}
