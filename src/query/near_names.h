// The names that come near to one that is not known, for messages that help.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tabelion {

// The names of `known` that come near `name`, the nearest first, at most three.
std::vector<std::string> nearestNames(std::string_view name, const std::vector<std::string>& known);
// The same; all of them, in their order, where none comes near and there are few.
std::vector<std::string> nearNames(std::string_view name, const std::vector<std::string>& known);
// `"Name", "Born" or "Group"`.
std::string alternatives(const std::vector<std::string>& names);

}  // namespace tabelion
