#include "foundation/lock_check.h"

#include "foundation/stack_trace.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>

namespace {

constexpr std::size_t rankCount = static_cast<std::size_t>(cc_LockRank::count);

constexpr char const* names[] = {
    "a lock of the application", "a wait for another thread", "the windows' thread", "the list of displays",
    "a root's mutex", "the orphans' mutex", "the registry of nodes", "a critical section", "the links of displays", "the mutexes of former roots",
    "the conversions of an image", "the start of the screen", "the menus", "a backing", "the window table", "the passed over errors",
    "fonts and palettes", "the device", "the glyphs", "the dictionaries", "the persistent classes", "the debug sink", "the painters",
    "a wake-up", "the inside of a lock", "the list of threads", "a thread's record"};
static_assert(std::size(names) == rankCount);

std::atomic<cc_LockCheck::Handler> current{nullptr};

}  // namespace

char const* cf_nameOf(cc_LockRank rank) { return names[static_cast<std::size_t>(rank)]; }

cc_LockCheck::Handler cc_LockCheck::handler(Handler h) { return current.exchange(h); }

#ifdef KRS_CHECK_LOCKS

namespace {

constexpr int mostFrames = 24, mostHeld = 64;
constexpr std::size_t mostEdges = 8192;

// Memory comes from nowhere: a test that counts or fails allocations must not see the watch.
struct cs_Stack {
  void* frames[mostFrames];
  int count = 0;
};

struct cs_Held {
  void const* lock;
  cc_LockRank rank;
  int times;  // of a recursive one
};

struct cs_Mine {
  cs_Held held[mostHeld];
  int count;
  bool busy;  // a fault is being reported
  // Edges that the graph has already, as of a count of locks that died.
  struct {
    std::uintptr_t from, to;
  } known[64];
  unsigned deaths;
};
constinit thread_local cs_Mine mine{};
std::atomic<unsigned> deaths{0};

// One node of the graph: a lock of an application or a thread by itself, a lock of ours by its rank.
using Node = std::uintptr_t;
Node cf_node(void const* lock, cc_LockRank rank)
{
  return rank <= cc_LockRank::threadEnd ? reinterpret_cast<Node>(lock) : static_cast<Node>(rank);
}

struct cs_Edge {
  Node from, to;
  std::size_t thread;
  cs_Stack stack;
};

// Edges that touch a lock of an application or a thread, or that join two roots. The others follow from the ranks and are kept only
// for their stack.
struct cs_Graph {
  std::mutex guard;
  cs_Edge* edges = nullptr;
  std::size_t count = 0, room = 0;
  std::array<std::array<std::atomic<cs_Stack*>, rankCount>, rankCount> ranked{};
};

constinit cs_Graph graph;
std::atomic<bool> anyEdges{false};

std::size_t cf_thread()
{
  static std::atomic<std::size_t> next{1};
  static constinit thread_local std::size_t number = 0;
  if (number == 0)
    number = next++;
  return number;
}

void cf_take(cs_Stack& stack) { stack.count = cf_stackTrace(stack.frames, mostFrames); }

void cf_report(char const* what, cs_Held const& held, char const* wanted, cs_Stack const* before)
{
  if (mine.busy)
    return;
  mine.busy = true;
  static char text[16384];
  static std::mutex guard;
  {
    std::lock_guard<std::mutex> const hold(guard);
    cs_Stack now;
    cf_take(now);
    int at = std::snprintf(text, sizeof text, "%s: %s is wanted while %s is held\n  now:\n", what, wanted,
                           cf_nameOf(held.rank));
    cf_stackText(now.frames, now.count, text + at, static_cast<int>(sizeof text) - at);
    at = static_cast<int>(std::strlen(text));
    at += std::snprintf(text + at, sizeof text - static_cast<std::size_t>(at), "  before, the other way round:\n");
    if (before)
      cf_stackText(before->frames, before->count, text + at, static_cast<int>(sizeof text) - at);
    else
      std::snprintf(text + at, sizeof text - static_cast<std::size_t>(at), "    as the order of locks says\n");
    if (auto const handler = current.load()) {
      handler(text);
    } else {
      std::fputs(text, stderr);
      std::abort();
    }
  }
  mine.busy = false;
}

// Under the guard.
cs_Edge* cf_find(Node from, Node to)
{
  for (std::size_t i = 0; i < graph.count; ++i)
    if (graph.edges[i].from == from && graph.edges[i].to == to)
      return &graph.edges[i];
  return nullptr;
}

bool cf_isRank(Node node) { return node < rankCount; }

struct cs_Way {
  bool found = false;
  bool others = false;  // other threads than the calling one had a part in it
  cs_Stack first;
};

// A way from one node to the other. Under the guard.
cs_Way cf_way(Node from, Node to)
{
  struct Step {
    Node node;
    cs_Stack const* first;
    bool others;
  };
  static Step open[2 * mostEdges];
  std::size_t known = 1;
  open[0] = {from, nullptr, false};
  auto const reach = [&](Node node, cs_Stack const* stack, bool others) {
    for (std::size_t k = 1; k < known; ++k)
      if (open[k].node == node)
        return;
    if (known < std::size(open))
      open[known++] = {node, stack, others};
  };
  cs_Way way;
  for (std::size_t i = 0; i < known; ++i) {
    Step const step = open[i];
    if (i > 0 && step.node == to) {
      way.found = true;
      way.others = step.others;
      way.first = *step.first;
      break;
    }
    for (std::size_t e = 0; e < graph.count; ++e)
      if (graph.edges[e].from == step.node)
        reach(graph.edges[e].to, step.first ? step.first : &graph.edges[e].stack,
              step.others || graph.edges[e].thread != cf_thread());
    if (cf_isRank(step.node))
      for (std::size_t r = 0; r < rankCount; ++r)
        if (cs_Stack const* const stack = graph.ranked[step.node][r].load())
          reach(r, step.first ? step.first : stack, true);
  }
  return way;
}

void cf_addEdge(Node from, Node to)
{
  if (graph.count == graph.room) {
    std::size_t const room = graph.room ? graph.room * 2 : 64;
    void* const more = room <= mostEdges ? std::realloc(graph.edges, room * sizeof(cs_Edge)) : nullptr;
    if (!more)
      return;
    graph.edges = static_cast<cs_Edge*>(more);
    graph.room = room;
  }
  cs_Edge& edge = graph.edges[graph.count++];
  edge.from = from;
  edge.to = to;
  edge.thread = cf_thread();
  cf_take(edge.stack);
  anyEdges = true;
}

enum class Circle { Always, OfSeveralThreads };

// An edge that the ranks do not decide.
void cf_freeEdge(cs_Held const& held, Node from, Node to, char const* wanted, Circle counts)
{
  unsigned const now = deaths.load(std::memory_order_acquire);
  if (mine.deaths != now) {
    std::memset(mine.known, 0, sizeof mine.known);
    mine.deaths = now;
  }
  auto& known = mine.known[(from / 8 * 31 + to / 8) % std::size(mine.known)];
  if (known.from == from && known.to == to)
    return;
  known = {from, to};
  cs_Way opposite;
  {
    std::lock_guard<std::mutex> const hold(graph.guard);
    if (cf_find(from, to))
      return;
    opposite = cf_way(to, from);
    cf_addEdge(from, to);
  }
  if (opposite.found && (opposite.others || counts == Circle::Always))
    cf_report("locks in a circle", held, wanted, &opposite.first);
}

// The mutexes of two trees meet where a hook moves a node from one to the other. One thread may do that in both directions.
void cf_rootEdge(cs_Held const& held, void const* to)
{
  Node const a = reinterpret_cast<Node>(held.lock), b = reinterpret_cast<Node>(to);
  cs_Stack opposite;
  bool circle = false;
  {
    std::lock_guard<std::mutex> const hold(graph.guard);
    if (cs_Edge const* const back = cf_find(b, a); back && back->thread != cf_thread()) {
      opposite = back->stack;
      circle = true;
    }
    if (!cf_find(a, b))
      cf_addEdge(a, b);
  }
  if (circle)
    cf_report("two trees in both orders", held, cf_nameOf(cc_LockRank::root), &opposite);
}

void cf_rankedEdge(cs_Held const& held, cc_LockRank rank)
{
  auto& known = graph.ranked[static_cast<std::size_t>(held.rank)][static_cast<std::size_t>(rank)];
  if (held.rank < rank) {
    if (known.load(std::memory_order_relaxed))
      return;
    if (auto* const stack = static_cast<cs_Stack*>(std::malloc(sizeof(cs_Stack)))) {
      cf_take(*stack);
      cs_Stack* none = nullptr;
      if (!known.compare_exchange_strong(none, stack))
        std::free(stack);
    }
    return;
  }
  cf_report("locks out of order", held, cf_nameOf(rank),
            graph.ranked[static_cast<std::size_t>(rank)][static_cast<std::size_t>(held.rank)].load());
}

void cf_check(void const* lock, cc_LockRank rank)
{
  for (int i = 0; i < mine.count; ++i) {
    cs_Held const& held = mine.held[i];
    if (held.lock == lock)
      continue;
    if (held.rank <= cc_LockRank::windowThread && held.rank != cc_LockRank::none && rank != cc_LockRank::none)
      continue;  // what a thread is may come before all that it takes
    if (held.rank == cc_LockRank::orphans && rank == cc_LockRank::root)
      continue;  // given up rather than waited under
    if (held.rank != cc_LockRank::none && rank != cc_LockRank::none) {
      if (held.rank == cc_LockRank::root && rank == cc_LockRank::root)
        cf_rootEdge(held, lock);
      else
        cf_rankedEdge(held, rank);
    } else {
      cf_freeEdge(held, cf_node(held.lock, held.rank), cf_node(lock, rank), cf_nameOf(rank), Circle::Always);
    }
  }
}

}  // namespace

void cc_LockCheck::wanted(void const* lock, cc_LockRank rank)
{
  if (mine.busy)
    return;
  for (int i = 0; i < mine.count; ++i)
    if (mine.held[i].lock == lock) {
      // A second time is the business of recursive locks, which ask before they come here.
      if (rank != cc_LockRank::section && rank != cc_LockRank::dictionaries)
        cf_report("a lock taken twice", mine.held[i], cf_nameOf(rank), nullptr);
      return;
    }
  cf_check(lock, rank);
}

void cc_LockCheck::taken(void const* lock, cc_LockRank rank)
{
  for (int i = mine.count; i-- > 0;)
    if (mine.held[i].lock == lock) {
      ++mine.held[i].times;
      return;
    }
  if (mine.count < mostHeld)
    mine.held[mine.count++] = {lock, rank, 1};
}

void cc_LockCheck::given(void const* lock, cc_LockRank)
{
  for (int i = mine.count; i-- > 0;)
    if (mine.held[i].lock == lock) {
      if (--mine.held[i].times == 0) {
        for (int k = i + 1; k < mine.count; ++k)
          mine.held[k - 1] = mine.held[k];
        --mine.count;
      }
      return;
    }
}

void cc_LockCheck::died(void const* lock)
{
  if (!anyEdges.load(std::memory_order_relaxed))
    return;
  Node const node = reinterpret_cast<Node>(lock);
  std::lock_guard<std::mutex> const hold(graph.guard);
  for (std::size_t i = 0; i < graph.count;)
    if (graph.edges[i].from == node || graph.edges[i].to == node)
      graph.edges[i] = graph.edges[--graph.count];
    else
      ++i;
  anyEdges = graph.count != 0;
  ++deaths;
}

void cc_LockCheck::waits(void const* what, cc_LockRank rank)
{
  if (mine.busy)
    return;
  for (int i = 0; i < mine.count; ++i) {
    cs_Held const& held = mine.held[i];
    if (held.rank > cc_LockRank::windowThread)
      cf_rankedEdge(held, rank);
    else if (held.lock != what)
      cf_freeEdge(held, cf_node(held.lock, held.rank), cf_node(what, rank), cf_nameOf(rank), Circle::OfSeveralThreads);
  }
}

void cc_LockCheck::gives(void const* what)
{
  if (mine.busy)
    return;
  for (int i = 0; i < mine.count; ++i)
    if (mine.held[i].rank == cc_LockRank::none)
      cf_freeEdge(mine.held[i], reinterpret_cast<Node>(what), reinterpret_cast<Node>(mine.held[i].lock),
                  "what another thread waits for", Circle::OfSeveralThreads);
}

int cc_LockCheck::held()
{
  int count = 0;
  for (int i = 0; i < mine.count; ++i)
    count += mine.held[i].rank == cc_LockRank::none || mine.held[i].rank > cc_LockRank::windowThread;
  return count;
}

bool cc_LockCheck::describeHeld(char* to, int room)
{
  int at = 0;
  for (int i = 0; i < mine.count && at < room; ++i)
    if (mine.held[i].rank == cc_LockRank::none || mine.held[i].rank > cc_LockRank::windowThread)
      at += std::snprintf(to + at, static_cast<std::size_t>(room - at), "%s%s", at ? ", " : "",
                          cf_nameOf(mine.held[i].rank));
  return at > 0;
}

#endif
