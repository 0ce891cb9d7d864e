// The schema of a database as its first record holds it: 35852 bytes, 41 items in file order.
//
// Items without a known meaning are kept byte for byte under their number (item9, item31_rest, …).
// The places chosen for settings are named here and listed in docs/file-format.md; settings inside
// a field definition are in schema_places.h. Numbers are big-endian in the file.
#pragma once

#include <array>
#include <cstdint>

#include "engine/bytes.h"
#include "engine/field_types.h"
#include "engine/record_io.h"
#include "engine/record_stamp.h"

namespace tabelion {

inline constexpr std::uint8_t kNoField = 255;  // a byte that names a slot: none
inline constexpr std::uint8_t kNoView = 255;   // current view: none
inline constexpr int kViewSlots = 20;
inline constexpr std::size_t kFieldNameSize = 20;  // with its NUL

inline constexpr std::size_t kHeadBlockSize = 22;
inline constexpr std::size_t kFieldDefinitionSize = 116;
inline constexpr std::size_t kFilterBlockSize = 94;
inline constexpr std::size_t kSortKeySize = 2;
inline constexpr std::size_t kViewSize = 1142;
inline constexpr std::size_t kDatabaseRecordSize = 35852;

static_assert(2 + 2 + 1 + 1 + 2 + 4 + 4 + 8 + 40 + 1 + 1 + 20 + 30 == kFieldDefinitionSize);
static_assert(2 + 2 + 40 + 40 + 4 + 4 + 1 + 1 == kFilterBlockSize);
static_assert(32 + 1 + 1 + 32 + 100 + 4 + 400 + 6 * kFilterBlockSize + 2 + 3 * kSortKeySize ==
              kViewSize);

// One of the 100 slots. Every slot has one, also an unused one, and keeps it when its type changes.
// Bytes without a name of their own hold settings by type (schema_places.h) or nothing known; all
// are written back as they were read.
struct FieldDefinition {
  FieldType type = FieldType::kUnused;  // 16-bit in the file, as is width
  std::int32_t width = 40;              // longest text of a text type; size of an external field
  std::uint8_t option_a = 0;
  std::uint8_t option_b = 1;
  std::int32_t column_width = 58;     // signed 16-bit in the file; list pixels / 1.5, 0 = hidden
  std::uint8_t export_flag = 1;       // C1, copied into every view
  std::uint8_t record_view_flag = 1;  // C2, copied into every view: shown in the record form
  std::uint8_t option_c3 = 0;
  std::uint8_t encrypt_flag = 0;  // C4
  std::array<std::uint8_t, 4> area_d{};
  std::array<std::uint8_t, 8> area_e{255, 255};
  std::array<std::uint8_t, 40> area_f{};
  std::uint8_t byte_g = 0;
  std::uint8_t byte_h = 0;
  TextArea<kFieldNameSize> name{};
  std::array<std::uint8_t, 30> area_i{};
};

// One filter criterion. What values and numbers mean depends on the type of the field; they are
// read by query/filter_criterion.h. A slot from 100 on, which a damaged file can name, no record
// has.
struct FilterBlock {
  std::uint16_t enabled = 0;  // not 0: takes part
  std::uint16_t field = 0;    // slot
  std::array<std::uint8_t, 40> value1{};
  std::array<std::uint8_t, 40> value2{};
  std::uint32_t number1 = 0;
  std::uint32_t number2 = 65000;
  std::uint8_t mode = 0;
  std::uint8_t grouping = 0;
  bool operator==(const FilterBlock&) const = default;
};

// A level of a sort; the first one without a field ends it.
struct SortKey {
  std::uint8_t field = kNoField;
  std::uint8_t order = 1;  // 1 forward, 0 reverse
  bool operator==(const SortKey&) const = default;
};

// What a view says of a field: as the field definition's members of these names.
struct ViewEntry {
  std::int32_t column_width = 0;  // signed 16-bit in the file
  std::uint8_t export_flag = 0;
  std::uint8_t record_view_flag = 0;
  bool operator==(const ViewEntry&) const = default;
};

// What choosing a view does: shows the records as it says, or opens the database that it names.
inline constexpr std::uint8_t kAdjustView = 0;
inline constexpr std::uint8_t kSwitchDatabase = 1;

struct View {
  TextArea<32> name{};
  std::uint8_t live_update = 0;           // 1: what is set while it is shown is stored in it
  std::uint8_t action = kSwitchDatabase;  // unused slots keep 1; made views start with 0
  TextArea<32> target{};                  // name of the other database, without folder
  std::array<std::uint8_t, kFieldSlots> field_order{};  // the slot shown at each place
  std::uint32_t item6 = 0;
  std::array<ViewEntry, kFieldSlots> entries{};  // by slot
  std::array<FilterBlock, 6> filters{};
  std::uint16_t item9 = 0;
  std::array<SortKey, 3> sort{};
  bool operator==(const View&) const = default;
};

// The members are the items in file order. Nothing keeps them consistent: orders may name a slot
// twice, counts may pass their limits in a damaged file, and whoever uses one has to check it.
struct DatabaseRecord {
  HeadBlock head{};                                       // 1
  TextArea<5> marker{'T', 'b', 'l', 'n', 'B'};            // 2
  std::uint8_t format_version = 3;                        // 3
  std::uint32_t next_auto_number = 1;                     // 4
  std::array<FilterBlock, 6> filters{};                   // 5
  std::array<SortKey, 3> sort{};                          // 6
  std::array<std::uint8_t, 2> item7{};                    // 7
  std::array<std::uint16_t, 2> item8{};                   // 8
  std::array<std::uint8_t, 2> item9{1, 1};                // 9
  std::array<std::uint8_t, 20> item10{};                  // 10
  std::array<FieldDefinition, kFieldSlots> fields{};      // 11
  std::uint8_t search_field = kNoField;                   // 12: 255 = all fields
  std::uint8_t search_case = 0;                           //     1 = case sensitive
  TextArea<35> search_text{};                             // 13
  std::uint8_t search_match = 0;                          // 14: 1 = begins with
  std::uint16_t stamping_option = 1;                      // 15: new records get a stamp
  std::uint16_t modification_stamp_option = 0;            //     saved records get a new stamp time
  std::uint16_t item15_third = 0;                         //
  std::uint8_t sort_pending = 0;                          // 16
  std::array<std::uint8_t, kFieldSlots> display_order{};  // 17
  std::array<std::uint8_t, 100> item18{};                 // 18
  std::array<std::uint8_t, 100> item19{};                 // 19
  std::uint8_t item20 = 0;                                // 20
  std::uint32_t security_word = 0;                        // 21: its low 16 bits in the file
  TextArea<40> edition{};                                 // 22
  TextArea<33> category{};                                // 23: bytes 0 to 32
  TextArea<64> author{};                                  //     bytes 33 to 96
  TextArea<25> access_password{};                         //     bytes 97 to 121
  std::array<std::uint8_t, 178> item23_rest{};            //     bytes 122 to 299
  std::uint16_t current_record_index = 0;                 // 24: data record number + 102, or 0
  std::array<std::uint8_t, 20> item25{};                  // 25
  std::uint16_t next_serial = 1;                          // 26
  std::uint32_t item27 = 0;                               // 27
  std::int32_t label_width_adjustment = 0;                // 28: signed 16-bit in the file
  std::array<std::uint8_t, 14> item29{};                  // 29
  std::uint16_t snooze_minutes = 1;                       // 30
  std::array<std::uint8_t, 6> item31{1, 0, 0, 1, 0, 1};   // 31
  std::array<std::uint8_t, 2> alarm_switches{};           // 32
  std::array<View, kViewSlots> views{};                   // 33
  std::uint16_t view_count = 0;                           // 34
  std::uint8_t current_view = 0;                          // 35: 255 = none
  std::array<std::uint8_t, 2> item35_rest{0, 255};        //
  std::uint8_t encryption_mode = 3;                       //
  std::array<std::uint8_t, 9> password_check{};           // 36
  std::uint8_t item36_last = 0;                           //
  std::uint8_t password_check_sum = 0;                    // 37
  std::uint8_t password_check_present = 0;                //
  TextArea<8> code_page{};                     // 38: "UTF-8", "CP1251"; zeros = the user's
  std::uint32_t item39 = 0;                    // 39
  std::array<std::uint8_t, 4> alarm_fields{};  // 40: date, time, two shown: slot + 1, 0 = none
  std::array<std::uint8_t, 4> item40_rest{};   //
  std::array<std::uint8_t, 2> item41{};        // 41

  // Bytes of the record behind its 35852, from a program that knew more; written back as read.
  Bytes surplus;
};

// The defaults of a new database: 100 unused slots named "Field 1" to "Field 100", view slots
// that show them in order. What the record held before is gone, its surplus too.
void initSchema(DatabaseRecord& schema);

// Puts the record's bytes into the buffer: exactly kDatabaseRecordSize and the surplus.
void writeDatabaseRecord(const DatabaseRecord& schema, RecordIO& to);
// False when the bytes are fewer than the record has; the schema is then partly filled.
[[nodiscard]] bool readDatabaseRecord(ByteView record, DatabaseRecord& schema);

// For people and tools: the parts of the record in file order; a part without a known meaning has
// an empty name. Together they are the whole kDatabaseRecordSize bytes, without gaps.
struct DatabaseRecordPart {
  int item = 0;
  std::string_view name;
  std::size_t offset = 0;
  std::size_t size = 0;
};
std::vector<DatabaseRecordPart> databaseRecordParts();

}  // namespace tabelion
