// vqctool's usage texts: the overview and one text per command. Portable.
#pragma once

#include <string>
#include <string_view>

namespace vqctool {

// topic: "" for the overview, else a command name ("show", "icon set", "icon", ...).
std::string HelpText(std::string_view topic);

}  // namespace vqctool
