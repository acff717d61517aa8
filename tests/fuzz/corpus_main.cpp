// Feeds a target with the files of its corpus, where there is no search: a test of every input that once found something.
#include "tests/fuzz/fuzz.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

int main(int count, char** values)
{
  int files = 0;
  for (int i = 1; i < count; ++i)
    for (auto const& entry : std::filesystem::recursive_directory_iterator(values[i])) {
      if (!entry.is_regular_file())
        continue;
      std::ifstream in(entry.path(), std::ios::binary);
      std::vector<char> const bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
      std::fprintf(stderr, "%s\n", entry.path().string().c_str());
      // As long as the data is, so that a sanitizer sees the first byte behind it.
      std::vector<std::uint8_t> data(bytes.begin(), bytes.end());
      data.shrink_to_fit();
      LLVMFuzzerTestOneInput(data.data(), data.size());
      ++files;
    }
  std::fprintf(stderr, "%d files\n", files);
  return files > 0 ? 0 : 1;
}
