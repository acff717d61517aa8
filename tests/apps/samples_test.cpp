#include "apps/common/image_file.h"
#include "apps/make_samples/sample_kit.h"
#include "apps/make_samples/samples.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

ccImageFile committed(char const* name)
{
  return cfReadImageFile(std::filesystem::path(KRS_SAMPLES_FOLDER) / name);
}

// The number of pels that differ, or -1 for different sizes.
template <class T> long differences(ccPelBuffer<T> const& a, ccPelBuffer<T> const& b)
{
  if (a.size() != b.size())
    return -1;
  long count = 0;
  for (long y = 0; y < a.height(); ++y)
    for (long x = 0; x < a.width(); ++x)
      count += a.getPel(x, y) != b.getPel(x, y);
  return count;
}

}  // namespace

TEST(Samples, conveyorIsMadeAnewPelByPel)
{
  ccImageFile const file = committed(samples::conveyor);
  ASSERT_EQ(file.format, ceImageFormatGrey8) << file.error;

  EXPECT_EQ(file.grey8.size(), ccPair<long>(1280, 960));
  EXPECT_EQ(differences(cf_conveyorSample(), file.grey8), 0);
}

TEST(Samples, plateIsMadeAnewPelByPel)
{
  ccImageFile const file = committed(samples::plate);
  ASSERT_EQ(file.format, ceImageFormatGrey8) << file.error;

  EXPECT_EQ(file.grey8.size(), ccPair<long>(1024, 768));
  EXPECT_EQ(differences(cf_plateSample(), file.grey8), 0);
}

TEST(Samples, panelIsMadeAnewPelByPelAndFillsTwelveBits)
{
  ccImageFile const file = committed(samples::panel);
  ASSERT_EQ(file.format, ceImageFormatGrey16) << file.error;

  EXPECT_EQ(file.bits, 12);
  EXPECT_EQ(file.grey16.size(), ccPair<long>(800, 600));
  EXPECT_EQ(differences(cf_panelSample(), file.grey16), 0);
  unsigned lowest = 65535, highest = 0;
  for (long y = 0; y < 600; ++y)
    for (long x = 0; x < 800; ++x) {
      lowest = std::min<unsigned>(lowest, file.grey16.getPel(x, y));
      highest = std::max<unsigned>(highest, file.grey16.getPel(x, y));
    }
  EXPECT_LT(lowest, 50u);
  EXPECT_EQ(highest, 4095u);
}

TEST(Samples, capsAreMadeAnewPelByPelAndAreColoured)
{
  ccImageFile const file = committed(samples::caps);
  ASSERT_EQ(file.format, ceImageFormatRGB32) << file.error;

  EXPECT_EQ(file.rgb.size(), ccPair<long>(720, 540));
  EXPECT_EQ(differences(cf_capsSample(), file.rgb), 0);
  ccPackedRGB32Pel const redCap = file.rgb.getPel(80, 110), blueCap = file.rgb.getPel(80, 470);
  EXPECT_GT(redCap.red(), redCap.blue() + 80);
  EXPECT_GT(blueCap.blue(), blueCap.red() + 80);
}

TEST(Samples, folderIsListedInFull)
{
  ccImageFolder const list = cfListImageFiles(KRS_SAMPLES_FOLDER);

  std::vector<std::string> names;
  for (auto const& path : list.files)
    names.push_back(path.filename().string());
  EXPECT_EQ(names, (std::vector<std::string>{samples::plate, samples::caps, samples::conveyor, samples::panel}));
}

// The published first values of the generator for seed 0.
TEST(SampleKit, randomNumbersAreSplitmix64)
{
  cc_Random random(0);

  EXPECT_EQ(random.next(), 0xE220A8397B1DCDAFu);
  EXPECT_EQ(random.next(), 0x6E789E6AA1B965F4u);
  EXPECT_EQ(random.next(), 0x06C45D188009454Fu);
}

TEST(SampleKit, ownSineAndDirectionAreTrueEnough)
{
  double const turn = 2 * std::acos(-1.0);
  for (double t = -2; t < 2; t += 0.0137) {
    EXPECT_NEAR(cf_sine(t), std::sin(turn * t), 1e-6) << t;
    EXPECT_NEAR(cf_cosine(t), std::cos(turn * t), 1e-6) << t;
    double const direction = cf_turns(3 * std::cos(turn * t), 3 * std::sin(turn * t)) - t;
    EXPECT_NEAR(direction, std::floor(direction + 0.5), 1e-4) << t;
  }
}
