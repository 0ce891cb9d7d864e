// Makes the benchmark's data: 65,000 records of 12 fields, 18 MB as CSV and about 150 MB as a
// database, where every note has 2,001 bytes; always the same for the same seed.
//
//   make_records FOLDER [SEED]   writes FOLDER/records.json (description) and FOLDER/records.csv
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr int kRecords = 65000;
constexpr int kItems = 20;

// The same numbers on every machine, unlike the standard library's distributions.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}
  std::uint32_t below(std::uint32_t limit) {
    state_ += 0x9E3779B97F4A7C15u;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return static_cast<std::uint32_t>(((z ^ (z >> 31)) >> 32) * limit >> 32);
  }

 private:
  std::uint64_t state_;
};

const std::vector<std::string>& words() {
  static const std::vector<std::string> list = {
      "harbour", "lamp",  "crème",  "street", "wooden", "Käse",   "river", "señor", "copper",
      "garden",  "small", "winter", "blue",   "stone",  "bridge", "salt",  "été",   "paper",
      "kettle",  "of",    "the",    "and",    "under",  "seven",  "quiet", "straße"};
  return list;
}

// Words with spaces between, at most `most` bytes.
std::string sentence(Random& random, std::size_t most) {
  std::string text;
  for (;;) {
    const std::string& word = words()[random.below(static_cast<std::uint32_t>(words().size()))];
    if (text.size() + word.size() + 1 > most) return text;
    if (!text.empty()) text += ' ';
    text += word;
  }
}

std::string csvRow(Random& random, int number) {
  char text[160];
  std::string row = sentence(random, 12 + random.below(24));
  row += ',';
  row += sentence(random, 8 + random.below(16));
  std::snprintf(text, sizeof text, ",%d,%.3f,Item %02u,%u,",
                static_cast<int>(random.below(2000000)) - 1000000, random.below(100000000) / 1000.0,
                random.below(kItems) + 1, random.below(2));
  row += text;
  std::snprintf(text, sizeof text, "%04u-%02u-%02u,%02u:%02u:%02u,", 1950 + random.below(90),
                1 + random.below(12), 1 + random.below(28), random.below(24), random.below(60),
                random.below(60));
  row += text;
  // Some notes hold what CSV has to put into quotes.
  std::string note = sentence(random, random.below(301));
  const std::size_t space = note.find(' ');
  if (random.below(8) == 0 && space != std::string::npos) {
    note = '"' + note.substr(0, space) + ',' + note.substr(space) + '"';
  }
  row += note;
  row += ',';
  row += sentence(random, 20 + random.below(30));
  std::snprintf(text, sizeof text, ",%.2f,%d\n", random.below(1000000) / 100.0, number);
  return row + text;
}

bool write(const std::string& path, const std::string& text) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) return false;
  const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  return std::fclose(file) == 0 && written;
}

std::string description() {
  std::string items;
  for (int i = 1; i <= kItems; ++i) {
    char item[16];
    std::snprintf(item, sizeof item, "%s\"Item %02d\"", i == 1 ? "" : ", ", i);
    items += item;
  }
  return R"({"name": "Records", "category": "Benchmark", "fields": [
  {"name": "Title", "type": "text", "width": 60},
  {"name": "Place", "type": "text", "width": 40},
  {"name": "Count", "type": "integer"},
  {"name": "Weight", "type": "float", "decimals": 3},
  {"name": "Kind", "type": "pop-up", "items": [)" +
         items + R"(]},
  {"name": "Checked", "type": "check box"},
  {"name": "Day", "type": "date"},
  {"name": "Hour", "type": "time"},
  {"name": "Note", "type": "note"},
  {"name": "Text", "type": "long text"},
  {"name": "Amount", "type": "float", "decimals": 2},
  {"name": "Number", "type": "auto-number"}]}
)";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2 || argc > 3) {
    std::fprintf(stderr, "usage: make_records FOLDER [SEED]\n");
    return 2;
  }
  const std::string folder = argv[1];
  Random random(argc == 3 ? std::strtoull(argv[2], nullptr, 10) : 1904);
  std::string csv = "Title,Place,Count,Weight,Kind,Checked,Day,Hour,Note,Text,Amount,Number\n";
  for (int i = 1; i <= kRecords; ++i) csv += csvRow(random, i);
  if (!write(folder + "/records.json", description()) || !write(folder + "/records.csv", csv)) {
    std::fprintf(stderr, "make_records: %s cannot be written to\n", folder.c_str());
    return 1;
  }
  return 0;
}
