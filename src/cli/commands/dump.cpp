// dump: the whole file as JSON, a record at a time, also of a file that does not open.

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "cli/command.h"
#include "cli/commands/dump_parts.h"
#include "cli/kit/context.h"
#include "cli/kit/json_output.h"
#include "engine/check.h"
#include "engine/packed_record.h"

namespace tabelion {
namespace {

using Json = nlohmann::ordered_json;

// Everything of the file, in file order. Nothing is held for longer than its record.
class Dump {
 public:
  Dump(CliContext& context, ByteView file)
      : context_(context),
        out_(context.out),
        file_(file),
        header_(parseHeader(file)),
        entries_(fileEntries(file, header_)),
        database_(std::make_unique<Database>()) {}

  ExitCode run(const std::string& path) {
    readSchema(path);
    const auto encoding = context_.encodingOf(*database_);
    if (!encoding.ok()) return context_.fail(encoding.error());
    out_.put(fmt::format("{{\n\"{}\": {}", kJsonSchemaVersionName, kJsonSchemaVersion));
    out_.put(",\n\"header\": ");
    putCompactJson(out_, dumpHeader(file_, header_, *encoding));
    out_.put(",\n\"database_record\": ");
    putDumped(out_, dumpDatabaseRecord(entryAt(0), *encoding));
    out_.put(",\n\"fields\": ");
    putList(dumpFields(database_->schema, *encoding));
    out_.put(",\n\"views\": ");
    putList(dumpViews(database_->schema, *encoding));
    out_.put(",\n\"field_records\": [");
    for (std::size_t slot = 0; slot < kFieldSlots; ++slot) {
      if (slot + 1 >= entries_.size()) break;
      out_.put(slot == 0 ? "\n" : ",\n");
      putDumped(out_, dumpFieldRecord(entryAt(slot + 1), static_cast<int>(slot), *encoding));
    }
    out_.put("\n],\n\"extension_record\": ");
    putDumped(out_, dumpExtensionRecord(entryAt(kFieldSlots + 1)));
    out_.put(",\n\"records\": [");
    putRecords(*encoding);
    out_.put("\n]\n}\n");
    return context_.finishOutput();
  }

 private:
  // An entry past the end of a short record list has no bytes.
  FileEntry entryAt(std::size_t index) const {
    return index < entries_.size() ? entries_[index] : FileEntry{};
  }

  void readSchema(const std::string& path) {
    database_->path = path;
    initSchema(database_->schema);
    // A short database record gives the settings that it holds.
    (void)readDatabaseRecord(entryAt(0).bytes, database_->schema);
    for (std::size_t slot = 0; slot < kFieldSlots; ++slot) {
      FieldRecord& field = database_->fields[slot];
      if (readFieldRecord(entryAt(slot + 1).bytes, field) != kFieldRecordRead) field.items.clear();
    }
  }

  void putList(const std::vector<Json>& list) {
    out_.put('[');
    for (std::size_t i = 0; i < list.size(); ++i) {
      out_.put(i == 0 ? "\n" : ",\n");
      putCompactJson(out_, list[i]);
    }
    out_.put("\n]");
  }

  void putRecords(const TextEncoding& encoding) {
    constexpr std::size_t kRecordsPerStep = 512;
    const ProgressStep progress = context_.progress("dumping");
    RecordDump records(*database_, encoding, context_.clock.local());
    for (std::size_t i = kSchemaRecords; i < entries_.size() && out_.ok(); ++i) {
      out_.put(i == kSchemaRecords ? "\n" : ",\n");
      records.put(entries_[i], i - kSchemaRecords, out_);
      if (progress && i % kRecordsPerStep == 0) {
        progress(static_cast<std::uint32_t>(i), static_cast<std::uint32_t>(entries_.size()));
      }
    }
  }

  CliContext& context_;
  OutputBuffer& out_;
  ByteView file_;
  FileHeader header_;
  std::vector<FileEntry> entries_;
  std::unique_ptr<Database> database_;  // the schema part and the item lists
};

ExitCode runDump(const std::string& file, CliContext& context) {
  const auto image = context.files.read(file);
  if (!image.ok()) return context.fail(image.error());
  if (image->size < kHeaderSize || parseHeader(image->span()).creator != kCreator) {
    return context.fail({ErrorKind::kNotDatabase, file + ": not a Tabelion database"});
  }
  return Dump(context, image->span()).run(file);
}

}  // namespace

CommandBody declareDump(OptionList list) {
  const auto file = std::make_shared<std::string>();
  list.required("FILE", *file, "The file");
  return [file](CliContext& context) { return runDump(*file, context); };
}

}  // namespace tabelion
