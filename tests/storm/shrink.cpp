#include "tests/storm/shrink.h"

#include "tests/storm/stage.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

#if defined(__SANITIZE_THREAD__)
#define KRS_STORM_FORKS 0
#else
#define KRS_STORM_FORKS 1
#endif

namespace {

// What the child leaves behind, however it ends.
struct Slate {
  bool finished = false, ok = true;
  char failure[6000] = {};
  StormStats stats;
};

void perform(StormScript const& script, StormSwitches const& switches, Slate& slate)
{
  std::string failure;
  slate.ok = cfRunStorm(script, switches, &failure, &slate.stats);
  std::strncpy(slate.failure, failure.c_str(), sizeof slate.failure - 1);
  slate.finished = true;
}

StormResult resultOf(Slate const& slate)
{
  return {slate.ok, slate.failure, slate.stats.steps, slate.stats};
}

}  // namespace

StormResult cfRunAside(StormScript const& script, StormSwitches const& switches, unsigned seconds)
{
  if (!KRS_STORM_FORKS || std::getenv("KRS_STORM_NOFORK")) {
    Slate slate;
    perform(script, switches, slate);
    return resultOf(slate);
  }
  void* const memory = mmap(nullptr, sizeof(Slate), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED)
    return {false, "child: no memory to share", 0, {}};
  Slate& slate = *new (memory) Slate;
  std::fflush(nullptr);
  pid_t const child = fork();
  if (child == 0) {
    alarm(seconds);
    perform(script, switches, slate);
    std::exit(slate.ok ? 0 : 1);  // the leak checker's turn
  }
  int status = 0;
  waitpid(child, &status, 0);
  StormResult result = resultOf(slate);
  if (WIFSIGNALED(status)) {
    result.ok = false;
    result.failure = WTERMSIG(status) == SIGALRM ? "hang: no end" : "crash: signal " + std::to_string(WTERMSIG(status));
  } else if (result.ok && (!slate.finished || WEXITSTATUS(status) != 0)) {
    result.ok = false;
    result.failure = "crash: ended with " + std::to_string(WEXITSTATUS(status));
  }
  munmap(memory, sizeof(Slate));
  return result;
}

// Takes away ever smaller pieces, as long as what is left fails in the same way; then empties values.
StormScript cfShrink(StormScript script, StormSwitches const& switches, StormResult const& first, unsigned seconds)
{
  auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  auto const late = [&] { return std::chrono::steady_clock::now() > end; };
  auto const fails = [&](StormScript const& candidate) {
    StormResult const r = cfRunAside(candidate, switches, 10);
    return !r.ok && r.kind() == first.kind();
  };
  script.resize(std::min(script.size(), static_cast<std::size_t>(std::max(first.step, 1L))));
  for (std::size_t piece = std::max<std::size_t>(script.size() / 2, 1); !late();) {
    bool shorter = false;
    for (std::size_t at = 0; at < script.size() && !late();) {
      StormScript candidate(script.begin(), script.begin() + static_cast<std::ptrdiff_t>(at));
      candidate.insert(candidate.end(), script.begin() + static_cast<std::ptrdiff_t>(std::min(at + piece, script.size())),
                       script.end());
      if (!candidate.empty() && fails(candidate)) {
        script = std::move(candidate);
        shorter = true;
      } else
        at += piece;
    }
    if (piece == 1 && !shorter)
      break;
    piece = std::max<std::size_t>(piece / 2, 1);
  }
  for (std::size_t i = 0; i < script.size(); ++i)
    for (std::uint8_t StormOp::*value : {&StormOp::a, &StormOp::b, &StormOp::c, &StormOp::d, &StormOp::e}) {
      std::uint8_t const former = std::exchange(script[i].*value, std::uint8_t{0});
      if (former != 0 && (late() || !fails(script)))
        script[i].*value = former;
    }
  return script;
}

std::string cfReport(unsigned seed, StormScript const& script, StormResult const& result)
{
  return "seed " + std::to_string(seed) + ", " + result.failure + "\n" + std::to_string(script.size()) +
         " operations still fail:\n" + cfLines(script);
}
