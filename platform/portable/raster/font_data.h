// The built-in faces: Latin-1 subsets of DejaVu Sans, so that text is the same on every machine.
#pragma once

#include "platform/types.h"

#include <span>

namespace plat::portable {

std::span<u8 const> builtInFont(bool bold);

}  // namespace plat::portable
