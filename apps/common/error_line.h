// Error texts: the name of what failed, a colon, what is wrong. Internal to apps.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

constexpr std::size_t cf_mostQuoted = 200;

// What somebody else wrote, fit for a message on one line of a terminal: control characters, marks that turn the direction of
// writing, and bytes that are no UTF-8 become question marks; from the last place on, `most` characters end in "...".
std::string cf_quoted(std::string_view, std::size_t most = cf_mostQuoted);

std::string cf_pathText(std::filesystem::path const&);  // UTF-8

// One line whatever the name holds. `why` has its own quotes cut already.
std::string cf_errorLine(std::string const& name, std::string const& why);

// The length of the UTF-8 character at the start of the text, 0 if there is none: no overlong forms, no surrogates, nothing
// beyond U+10FFFF. The text is not empty.
std::size_t cf_utf8Length(std::string_view text);
