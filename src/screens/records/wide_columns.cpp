#include "screens/records/wide_columns.h"

#include <algorithm>
#include <numeric>

#include "screens/records/list_columns.h"

namespace tabelion {
namespace {

constexpr std::size_t kSampledRows = 48;
constexpr std::size_t kMeasuredTexts = 4;
constexpr int kMostPixels = 320;  // one long text does not push the others out
constexpr int kAir = 8;           // at a text's sides

// The width that shows the column's heading and the sampled texts whole.
int wantedWidth(Application& app, int slot, const std::u16string& heading,
                const std::function<int(const std::u16string&)>& text_width) {
  const Database& database = CurrentDatabase(app);
  const auto& index = database.record_index;
  std::vector<std::u16string> texts;
  if (database.schema.fields[static_cast<std::size_t>(slot)].type != FieldType::kCheckBox) {
    const std::size_t rows = std::min(index.size(), kSampledRows);
    for (std::size_t i = 0; i < rows; ++i) {
      texts.push_back(ListCellText(app, index[i * index.size() / rows], slot));
    }
  }
  // Measuring takes longer than all else here, and the widest is among the longest.
  const auto measured = static_cast<std::ptrdiff_t>(std::min(texts.size(), kMeasuredTexts));
  std::partial_sort(texts.begin(), texts.begin() + measured, texts.end(),
                    [](const auto& a, const auto& b) { return a.size() > b.size(); });
  int widest = text_width(heading);
  for (auto text = texts.begin(); text != texts.begin() + measured; ++text) {
    widest = std::max(widest, text_width(*text));
  }
  return std::min(widest + kAir, kMostPixels);
}

}  // namespace

void GiveColumnsRoom(Application& app, const std::vector<int>& slots, int room,
                     const std::function<int(const std::u16string&)>& text_width,
                     std::vector<ListColumn>& columns) {
  for (const ListColumn& column : columns) room -= column.width;
  if (room <= 0) return;
  std::vector<int> missing;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const int wanted = wantedWidth(app, slots[i], columns[i].heading, text_width);
    missing.push_back(std::max(0, wanted - columns[i].width));
  }
  std::vector<std::size_t> least_first(columns.size());
  std::iota(least_first.begin(), least_first.end(), std::size_t{0});
  std::stable_sort(least_first.begin(), least_first.end(),
                   [&](std::size_t a, std::size_t b) { return missing[a] < missing[b]; });
  for (const std::size_t i : least_first) {
    const int given = std::min(missing[i], room);
    columns[i].width += given;
    room -= given;
  }
}

}  // namespace tabelion
