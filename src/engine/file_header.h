// The 78 bytes at the start of every database file, and the two probes that the program tells
// files apart with.
#pragma once

#include <cstdint>
#include <string>

#include "engine/bytes.h"
#include "platform/files.h"

namespace tabelion {

inline constexpr std::size_t kHeaderSize = 78;
inline constexpr std::size_t kNameSize = 32;
inline constexpr std::size_t kRecordListEntrySize = 8;
inline constexpr std::size_t kGapSize = 2;         // zeros between record list and info block
inline constexpr std::size_t kInfoBlockSize = 40;  // always zero
inline constexpr int kSchemaRecords = 102;         // database, 100 field, extension record

// Four characters, the first in the most significant byte.
constexpr std::uint32_t fourCc(const char (&text)[5]) {
  return static_cast<std::uint32_t>(static_cast<std::uint8_t>(text[0])) << 24 |
         static_cast<std::uint32_t>(static_cast<std::uint8_t>(text[1])) << 16 |
         static_cast<std::uint32_t>(static_cast<std::uint8_t>(text[2])) << 8 |
         static_cast<std::uint32_t>(static_cast<std::uint8_t>(text[3]));
}
inline constexpr std::uint32_t kCreator = fourCc("Tbln");
inline constexpr std::uint32_t kLegacyCreator = fourCc("PmDB");
inline constexpr std::uint32_t kFormCreator = fourCc("TBFM");

inline constexpr std::uint8_t kAttributeDirty = 0x40;  // of a record-list entry

// The creation date that every new database gets and most keep: for people it is none.
inline constexpr std::uint32_t kNoCreationDate = 893970430;

// Multi-byte numbers are big-endian in the file; dates are seconds since 1904-01-01, in 32 bits,
// which last until 2040.
struct FileHeader {
  TextArea<kNameSize> name{};  // 8-bit, in the database's code page
  std::uint16_t attributes = 8;
  std::uint16_t version = 0;
  // Placeholders of a new database, on purpose not the clock.
  std::uint32_t creation_date = kNoCreationDate;
  std::uint32_t modification_date = 893970435;
  std::uint32_t backup_date = 0;
  std::uint32_t modification_number = 86;
  std::uint32_t info_offset = 0;  // of the info block; computed when the file is laid out
  std::uint32_t sort_info_offset = 0;
  std::uint32_t type = kCreator;
  std::uint32_t creator = kCreator;
  std::uint32_t unique_id_seed = 0;
  std::uint32_t next_record_list = 0;
  std::uint16_t record_count = 0;  // data records + 102
};

// What a probe of a file says, in the numbers that the system has for it.
inline constexpr int kProbeAccepted = 1;
inline constexpr int kProbeCannotOpen = 0;
inline constexpr int kProbeWrongCreator = -1;

// Read the first 78 bytes of a file, and no more; one of the results above. They fill every field
// but where nothing could be read, which leaves `header` and `last_probed` as they were. A creation
// date later than the modification date is lowered to it. `last_probed` receives a copy: the
// program keeps the header that it probed last (Engine::last_probed_header).
int readHeader(Files& files, const std::string& path, FileHeader& header, FileHeader& last_probed);
int readLegacyHeader(Files& files, const std::string& path, FileHeader& header,
                     FileHeader& last_probed);
int readFormHeader(Files& files, const std::string& path, FileHeader& header);

// The header in the first bytes of a file; those that are missing read as 0xFF. Says nothing about
// whether it is one of ours.
FileHeader parseHeader(ByteView start);

// Appends the 78 bytes; lowers a late creation date in `header` too. Returns 1.
int writeHeader(FileHeader& header, ByteWriter& to);
// Unique IDs are kept least significant byte first in memory and written the other way round.
void writeRecordListEntry(std::uint32_t offset, std::uint8_t attributes,
                          const std::array<std::uint8_t, 3>& unique_id, ByteWriter& to);

// Every field of a new database; a name that does not fit is cut to 31 bytes.
void initHeader(std::string_view name, FileHeader& header);

}  // namespace tabelion
