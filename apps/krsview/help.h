// The text of krsview --help, made from the tables of options and script lines.
#pragma once

#include <string>

std::string cfViewHelp();
