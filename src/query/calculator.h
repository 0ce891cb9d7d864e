// Calculated fields of one record after another, prepared once for a pass. Internal to query/.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/database.h"
#include "engine/packed_record.h"
#include "query/formula.h"
#include "query/query_settings.h"
#include "query/recompute.h"

namespace tabelion {

// A value that differs from the stored one: its text and zeros.
struct NewValue {
  int slot = 0;
  ByteView old;  // what is stored now
  std::array<std::uint8_t, kNumberTextSize> bytes{};

  ByteView view() const { return bytes; }
};

// Refers to the database, whose schema must not change meanwhile, and to the settings.
class Calculator {
 public:
  // The fields of `slots` that are calculated, in that order.
  Calculator(const Database& database, const std::vector<int>& slots,
             const QuerySettings& settings);

  bool isEmpty() const { return calculations_.empty(); }
  bool usesPreviousRecord() const { return !previous_slots_.empty(); }

  // The record that comes next; until the call after it must stay where it is.
  void begin(ByteView record);
  // The same for a record that is taken apart; `packed` serves lookups.
  void begin(const UnpackedRecord& record, ByteView packed);

  // Works the fields out for the record begun. What differs from what is stored is in newValues(),
  // by rising slot, until the next call. How many formulas were corrupt.
  int compute(std::uint32_t position, const CorruptFormula& corrupt);
  const std::vector<NewValue>& newValues() const { return new_values_; }

  // The record begun, with its new values in it. False when there are none, or no room for them.
  [[nodiscard]] bool packChanged(Bytes& into) const;

  // Makes the record begun, with its new values, the previous one of what comes.
  void keepAsPrevious();

 private:
  // A token that is a field.
  struct Operand {
    std::size_t token = 0;
    std::size_t slot = 0;
    bool previous = false;
  };
  struct Calculation {
    std::size_t slot = 0;
    Formula formula;
    std::vector<Operand> fields;
    std::vector<double> operands;  // parallel to the formula's tokens
  };

  void add(int slot);
  void putNewValue(std::size_t slot);
  bool isMaskedSlot(std::size_t slot) const;
  double numberOf(std::size_t slot);
  double readNumber(std::size_t slot) const;

  const Database& database_;
  const QuerySettings& settings_;
  std::vector<Calculation> calculations_;
  std::vector<std::size_t> previous_slots_;
  std::size_t needed_ = 0;  // slots that a record is read to

  ByteView record_;
  bool enciphered_ = false;
  std::size_t present_ = 0;                     // slots of the packed record that were found
  std::array<ByteView, kFieldSlots> values_;    // empty where absent; new ones once worked out
  std::bitset<kFieldSlots> known_;              // whose number was read
  std::array<double, kFieldSlots> numbers_{};   // of the values known
  std::array<double, kFieldSlots> previous_{};  // of the previous record; 0 when there is none
  std::vector<NewValue> new_values_;
  std::string text_;
};

}  // namespace tabelion
