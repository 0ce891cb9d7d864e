#include "query/near_names.h"

#include <algorithm>
#include <numeric>

#include "query/text_case.h"

namespace tabelion {
namespace {

constexpr std::size_t kMostNear = 3;
constexpr std::size_t kFewNames = 12;

// How many letters have to be put in, left out, replaced or swapped with their neighbour to make
// one text of the other, in any case.
std::size_t editDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> before_last(b.size() + 1);
  std::vector<std::size_t> last(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  const auto same = [&](std::size_t i, std::size_t j) {
    return lowerCase(a[i]) == lowerCase(b[j]);
  };
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::swap(before_last, last);
    std::swap(last, row);
    row[0] = i + 1;
    for (std::size_t j = 0; j < b.size(); ++j) {
      row[j + 1] = std::min({last[j] + (same(i, j) ? 0 : 1), last[j + 1] + 1, row[j] + 1});
      const bool is_swapped = i > 0 && j > 0 && same(i, j - 1) && same(i - 1, j);
      if (is_swapped) row[j + 1] = std::min(row[j + 1], before_last[j - 1] + 1);
    }
  }
  return row.back();
}

}  // namespace

std::vector<std::string> nearestNames(std::string_view name,
                                      const std::vector<std::string>& known) {
  struct Near {
    std::size_t distance;
    const std::string* name;
  };
  std::vector<Near> near;
  const std::string lower = lowerCaseText(name);
  for (const std::string& other : known) {
    std::size_t distance = editDistance(name, other);
    const bool contains =
        std::min(name.size(), other.size()) > 1 &&
        (containsAnyCase(other, lower) || containsAnyCase(name, lowerCaseText(other)));
    if (contains) distance = std::min<std::size_t>(distance, 1);
    if (distance <= std::max<std::size_t>(1, std::max(name.size(), other.size()) / 3)) {
      near.push_back({distance, &other});
    }
  }
  std::stable_sort(near.begin(), near.end(),
                   [](const Near& a, const Near& b) { return a.distance < b.distance; });
  std::vector<std::string> names;
  for (const Near& entry : near) {
    if (names.size() < kMostNear) names.push_back(*entry.name);
  }
  return names;
}

std::vector<std::string> nearNames(std::string_view name, const std::vector<std::string>& known) {
  std::vector<std::string> near = nearestNames(name, known);
  return near.empty() && known.size() <= kFewNames ? known : near;
}

std::string alternatives(const std::vector<std::string>& names) {
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) text += i + 1 == names.size() ? " or " : ", ";
    text += '"' + names[i] + '"';
  }
  return text;
}

}  // namespace tabelion
