// krsview in a real window on a virtual X server, worked by a hand from outside; its picture there is the headless one.
#include "apps/common/image_file.h"
#include "tests/apps/file_kit.h"
#include "tests/platform/sdl/x_server.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

// Until it holds; false after ten seconds.
template <class Condition> bool comes(Condition condition)
{
  auto const end = Clock::now() + std::chrono::seconds(10);
  while (!condition()) {
    if (Clock::now() > end)
      return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

std::string outputOf(std::string const& command)
{
  std::string text;
  if (FILE* const pipe = popen(command.c_str(), "r")) {
    char part[256];
    while (std::size_t const n = std::fread(part, 1, sizeof part, pipe))
      text.append(part, n);
    pclose(pipe);
  }
  return text;
}

class KrsviewWindow : public testing::Test {
protected:
  static constexpr int kWidth = 320, kHeight = 240;

  void SetUp() override
  {
    // Shades that tell columns and rows apart.
    std::ofstream a(folder_.file("a.pgm"), std::ios::binary), b(folder_.file("b.pgm"), std::ios::binary);
    a << "P5\n400 300\n255\n";
    b << "P5\n100 90\n255\n";
    for (int y = 0; y < 300; ++y)
      for (int x = 0; x < 400; ++x)
        a << static_cast<char>((x * 7 + y * 13) & 255);
    for (int i = 0; i < 9000; ++i)
      b << static_cast<char>((i * 11) & 255);
    a.close();
    b.close();
    program_ = fork();
    if (program_ == 0) {
      setenv("DISPLAY", xserver::name().c_str(), 1);
      setenv("SDL_VIDEODRIVER", "x11", 1);
      execl(KRSVIEW_PROGRAM, "krsview", "--window", "320x240", "--quit-after", "60", folder_.file("a.pgm").c_str(),
            folder_.file("b.pgm").c_str(), static_cast<char*>(nullptr));
      _exit(127);
    }
    ASSERT_TRUE(comes([this] { return findWindow(); }));
    ASSERT_TRUE(shows("")) << "the first picture";
    xserver::focusWindow(id_);
  }

  void TearDown() override
  {
    if (program_ > 0 && status_ < 0) {
      kill(program_, SIGKILL);
      waitpid(program_, nullptr, 0);
    }
  }

  bool findWindow()
  {
    std::string const text =
        outputOf("DISPLAY=" + xserver::name() + " xdotool search --onlyvisible --name '^krsview' 2>/dev/null");
    if (text.empty())
      return false;
    id_ = std::stoul(text);
    std::istringstream geometry(
        outputOf("DISPLAY=" + xserver::name() + " xdotool getwindowgeometry --shell " + std::to_string(id_)));
    for (std::string line; std::getline(geometry, line);) {
      if (line.rfind("X=", 0) == 0)
        left_ = std::stoi(line.substr(2));
      if (line.rfind("Y=", 0) == 0)
        top_ = std::stoi(line.substr(2));
    }
    return true;
  }

  // Waits until the screen shows what the same deeds lead to without a screen.
  bool shows(std::string const& script, int width = kWidth, int height = kHeight)
  {
    std::ofstream(folder_.file("script.txt")) << script;
    std::string const command = std::string("'") + KRSVIEW_PROGRAM + "' --headless --window 320x240 --script '" +
                                folder_.file("script.txt").string() + "' --shot '" + folder_.file("expected.png").string() +
                                "' '" + folder_.file("a.pgm").string() + "' '" + folder_.file("b.pgm").string() + "'";
    if (std::system(command.c_str()) != 0)
      return false;
    ccImageFile const file = cfReadImageFile(folder_.file("expected.png"));
    std::vector<plat::u32> expected;
    for (long y = 0; y < file.height(); ++y)
      for (long x = 0; x < file.width(); ++x) {
        plat::u32 const grey = file.grey8.getPel(x, y);
        expected.push_back(file.format == ceImageFormatGrey8 ? grey * 0x010101u : file.rgb.getPel(x, y).word());
      }
    return comes([&] { return xserver::grab({left_, top_, left_ + width, top_ + height}) == expected; });
  }

  void point(int x, int y) { xserver::tool({"mousemove", std::to_string(left_ + x), std::to_string(top_ + y)}); }

  int waitForEnd()
  {
    int raw = 0;
    EXPECT_TRUE(comes([&] { return waitpid(program_, &raw, WNOHANG) == program_; }));
    status_ = WIFEXITED(raw) ? WEXITSTATUS(raw) : 99;
    return status_;
  }

  TestFolder folder_;
  pid_t program_ = -1;
  int status_ = -1;
  xserver::Id id_ = 0;
  int left_ = 0, top_ = 0;
};

}  // namespace

TEST_F(KrsviewWindow, theWheelAndTheKeysZoom)
{
  point(100, 80);
  xserver::tool({"click", "4"});
  EXPECT_TRUE(shows("wheel 1 100 80\n"));

  xserver::tool({"key", "plus"});
  EXPECT_TRUE(shows("wheel 1 100 80\nchar +\n"));

  xserver::tool({"key", "0"});
  EXPECT_TRUE(shows("wheel 1 100 80\nchar +\nchar 0\n"));
}

TEST_F(KrsviewWindow, dragsPanInPanMode)
{
  xserver::tool({"key", "a"});
  point(100, 80);
  xserver::tool({"mousedown", "1"});
  point(130, 60);
  xserver::tool({"mouseup", "1"});

  EXPECT_TRUE(shows("char a\npress left 100 80\nmove 130 60\nrelease left 130 60\n"));
}

TEST_F(KrsviewWindow, clicksZoomInZoomMode)
{
  xserver::tool({"key", "i"});
  point(60, 50);
  xserver::tool({"click", "1"});

  EXPECT_TRUE(shows("char i\npress left 60 50\nrelease left 60 50\n"));
}

TEST_F(KrsviewWindow, keysStepThroughTheImages)
{
  point(20, 20);
  xserver::tool({"key", "Next"});
  EXPECT_TRUE(shows("key down pagedown\nkey up pagedown\n"));

  xserver::tool({"key", "Prior"});
  EXPECT_TRUE(shows(""));
}

TEST_F(KrsviewWindow, aResizedWindowShowsMore)
{
  xserver::tool({"windowsize", std::to_string(id_), "360", "200"});

  EXPECT_TRUE(shows("resize 360 200\n", 360, 200));
}

TEST_F(KrsviewWindow, whatWasCoveredComesBack)
{
  xserver::Id const cover = xserver::makeWindow({left_ + 40, top_ + 30, left_ + 200, top_ + 150}, 0xFF0000);
  ASSERT_TRUE(comes([&] { return xserver::grab({left_ + 50, top_ + 40, left_ + 51, top_ + 41})[0] == 0xFF0000u; }));

  xserver::destroyWindow(cover);

  EXPECT_TRUE(shows(""));
}

TEST_F(KrsviewWindow, qQuits)
{
  point(20, 20);
  xserver::tool({"key", "q"});

  EXPECT_EQ(waitForEnd(), 0);
}

TEST_F(KrsviewWindow, itsCloseBoxQuits)
{
  xserver::askToClose(id_);

  EXPECT_EQ(waitForEnd(), 0);
}

int main(int count, char** values)
{
  testing::InitGoogleTest(&count, values);
  if (!xserver::start()) {
    std::fprintf(stderr, "no virtual X server\n");
    return 1;
  }
  setenv("DISPLAY", xserver::name().c_str(), 1);  // for xdotool
  int const result = RUN_ALL_TESTS();
  xserver::stop();
  return result;
}
