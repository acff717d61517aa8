// Which screen the library takes, and when it says that it cannot.
#include "tests/platform/sdl/sdl_fixture.h"

#include <array>
#include <cstdio>
#include <cstdlib>

#include <SDL.h>
#include <unistd.h>

using namespace plat;

namespace {

class Start : public ::testing::Test {
protected:
  Start() { headless(); }
  ~Start() override
  {
    headless();
    unsetenv("SDL_VIDEODRIVER");
    setenv("DISPLAY", xserver::name().c_str(), 1);
  }

  static void headless()
  {
    InitOptions options;
    options.video = InitOptions::headless;
    EXPECT_TRUE(init(options));
  }

  static bool window() { return init(); }

  static std::string firstUse()
  {
    std::array<char, 200> line{};
    std::array<char, 1000> self{};
    EXPECT_GT(readlink("/proc/self/exe", self.data(), self.size() - 1), 0);
    FILE* const out = popen((std::string(self.data()) + " --first-use").c_str(), "r");
    EXPECT_NE(std::fgets(line.data(), line.size(), out), nullptr);
    EXPECT_EQ(pclose(out), 0);
    return line.data();
  }
};

}  // namespace

TEST_F(Start, initTakesX11WithoutBeingTold)
{
  unsetenv("SDL_VIDEODRIVER");

  ASSERT_TRUE(window());

  EXPECT_STREQ(SDL_GetCurrentVideoDriver(), "x11");
  EXPECT_EQ(platform().windows.windowRect(platform().windows.desktop()), (Rect{0, 0, 1024, 768}));
  EXPECT_EQ(platform().windows.desktopDepth(), 32);
}

TEST_F(Start, initTakesTheDummyDriverWhenTold)
{
  setenv("SDL_VIDEODRIVER", "dummy", 1);

  ASSERT_TRUE(window());

  EXPECT_STREQ(SDL_GetCurrentVideoDriver(), "dummy");
}

TEST_F(Start, initIsFalseForADriverThatIsNotThere)
{
  setenv("SDL_VIDEODRIVER", "nosuchdriver", 1);

  EXPECT_FALSE(window());

  EXPECT_FALSE(SDL_WasInit(SDL_INIT_VIDEO));
}

TEST_F(Start, initIsFalseWithoutADisplay)
{
  unsetenv("SDL_VIDEODRIVER");
  unsetenv("DISPLAY");

  EXPECT_FALSE(window());
}

TEST_F(Start, initIsFalseWhileAWindowStands)
{
  setenv("SDL_VIDEODRIVER", "dummy", 1);
  ASSERT_TRUE(window());
  WindowDesc desc;
  desc.rect = {0, 0, 10, 10};
  HWND const standing = platform().windows.create(desc);

  EXPECT_FALSE(window());

  platform().windows.destroy(standing);
  EXPECT_TRUE(window());
}

TEST_F(Start, theChoiceOfDriversIsTheApplicationsAgainAfterwards)
{
  unsetenv("SDL_VIDEODRIVER");
  ASSERT_TRUE(window());

  EXPECT_EQ(SDL_GetHint(SDL_HINT_VIDEODRIVER), nullptr);
}

TEST_F(Start, goingHeadlessEndsSdlVideo)
{
  setenv("SDL_VIDEODRIVER", "dummy", 1);
  ASSERT_TRUE(window());

  headless();

  EXPECT_FALSE(SDL_WasInit(SDL_INIT_VIDEO));
}

TEST_F(Start, videoThatTheApplicationStartedGoesOn)
{
  setenv("SDL_VIDEODRIVER", "dummy", 1);
  ASSERT_EQ(SDL_InitSubSystem(SDL_INIT_VIDEO), 0);
  ASSERT_TRUE(window());

  headless();

  EXPECT_TRUE(SDL_WasInit(SDL_INIT_VIDEO));
  SDL_QuitSubSystem(SDL_INIT_VIDEO);
  EXPECT_FALSE(SDL_WasInit(SDL_INIT_VIDEO));
}

TEST_F(Start, settingsAreThoseOfADisplay)
{
  setenv("SDL_VIDEODRIVER", "dummy", 1);
  ASSERT_TRUE(window());

  EXPECT_STREQ(SDL_GetHint(SDL_HINT_NO_SIGNAL_HANDLERS), "1");
  EXPECT_STREQ(SDL_GetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION), "0");
  EXPECT_STREQ(SDL_GetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER), "1");
  EXPECT_STREQ(SDL_GetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE), "0");
}

TEST_F(Start, firstUseWithoutInitOpensWindowsWhereThereIsADisplay)
{
  unsetenv("SDL_VIDEODRIVER");

  EXPECT_EQ(firstUse(), "x11 visible\n");
}

TEST_F(Start, firstUseWithoutInitGoesHeadlessWhereThereIsNone)
{
  unsetenv("SDL_VIDEODRIVER");
  unsetenv("DISPLAY");

  EXPECT_EQ(firstUse(), "headless visible\n");
}
