// Error texts about files: the path, a colon, what is wrong. Internal to apps/common.
#pragma once

#include <filesystem>
#include <string>

std::string cf_pathText(std::filesystem::path const&);  // UTF-8

// One line whatever the name holds: control characters become question marks.
std::string cf_errorLine(std::string const& name, std::string const& why);
