#include "engine/extension_record.h"

#include "engine/field_record.h"

namespace tabelion {
namespace {

bool writesIgnoredBytes(const ExtensionRecord& extension) {
  return extension.entries.empty() && !extension.ignored.empty();
}

}  // namespace

std::size_t extensionRecordLength(const ExtensionRecord& extension) {
  if (writesIgnoredBytes(extension)) return extension.ignored.size();
  return 28 + sizeof(ExtensionEntry) * extension.entries.size() + extension.surplus.size();
}

void writeExtensionRecord(const ExtensionRecord& extension, RecordIO& to) {
  if (writesIgnoredBytes(extension)) {
    to.putBytes(extension.ignored);
    return;
  }
  to.putByte(kSchemaRecordType);
  to.putBytes(extension.head);
  to.putLe16(static_cast<std::uint32_t>(extension.entries.size()));
  for (const ExtensionEntry& entry : extension.entries) to.putBytes(entry);
  to.putBytes(extension.closing);
  to.putBytes(extension.surplus);
}

bool readExtensionRecord(ByteView record, ExtensionRecord& extension) {
  extension.entries.clear();
  extension.surplus.clear();
  extension.ignored.clear();
  if (record.empty() || record[0] != kSchemaRecordType) {
    extension.ignored.assign(record.begin(), record.end());
    return true;
  }
  ByteReader reader(record);
  reader.readByte();
  reader.readBytes(extension.head);
  const std::size_t entries = reader.readLe16();
  if (!reader.ok() || reader.remaining() < entries * sizeof(ExtensionEntry) + 3) return false;
  extension.entries.resize(entries);
  for (ExtensionEntry& entry : extension.entries) reader.readBytes(entry);
  reader.readBytes(extension.closing);
  extension.surplus.assign(reader.rest().begin(), reader.rest().end());
  return true;
}

}  // namespace tabelion
