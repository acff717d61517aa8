// Drawing scripts, one for each family of figures: what a scope can draw, in steps that build on each other.
#pragma once

#include <functional>
#include <string>
#include <vector>

class ccWin32UIScope;

struct DrawStep {
  std::string name;  // one word
  std::function<void(ccWin32UIScope&)> draw;
};

struct DrawFamily {
  std::string name;  // one word
  std::vector<DrawStep> steps;
};

constexpr long drawScriptWidth = 160, drawScriptHeight = 120;

// All families. Fonts of their texts live as long as the program.
std::vector<DrawFamily> const& cf_drawFamilies();
