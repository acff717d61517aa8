#include "foundation/persistent.h"

#include "foundation/leaf_mutex.h"

#include <map>

namespace {

using Maker = ccPersistent* (*)();

struct cs_Registry {
  cc_LeafMutex<cc_LockRank::persistent> guard;
  std::map<std::string, Maker> makers;
};

// Never destroyed, since exceptions may still be read while static objects die.
cs_Registry& cf_registry()
{
  static cs_Registry& registry = *new cs_Registry;
  return registry;
}

}  // namespace

void ccPersistent::dispatchSerialize(ccArchive&) {}

cc_Instantiator::cc_Instantiator(char const* name, ccPersistent* (*maker)())
{
  if (!name || !maker)
    return;
  cs_Registry& registry = cf_registry();
  std::lock_guard const hold(registry.guard);
  registry.makers.emplace(name, maker);
}

ccPersistent* cc_Instantiator::make(std::string const& name)
{
  Maker maker = nullptr;
  {
    cs_Registry& registry = cf_registry();
    std::lock_guard const hold(registry.guard);
    auto const found = registry.makers.find(name);
    if (found != registry.makers.end())
      maker = found->second;
  }
  return maker ? maker() : nullptr;
}
