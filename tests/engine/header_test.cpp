#include "engine/file_header.h"

#include <gtest/gtest.h>

#include "support/memory_files.h"

namespace tabelion {
namespace {

Bytes headerBytes(FileHeader header) {
  Bytes bytes;
  ByteWriter writer(bytes);
  writeHeader(header, writer);
  return bytes;
}

TEST(Header, NewOneHasItsPlaceholders) {
  FileHeader header;
  initHeader("Books", header);
  header.record_count = 102;
  const Bytes bytes = headerBytes(header);
  ASSERT_EQ(bytes.size(), kHeaderSize);
  EXPECT_EQ(areaText(ByteView(bytes).first(32)), "Books");
  EXPECT_EQ(loadBe16(&bytes[32]), 8);
  EXPECT_EQ(loadBe32(&bytes[36]), 893970430u);
  EXPECT_EQ(loadBe32(&bytes[40]), 893970435u);
  EXPECT_EQ(loadBe32(&bytes[48]), 86u);
  EXPECT_EQ(std::string(bytes.begin() + 60, bytes.begin() + 68), "TblnTbln");
  EXPECT_EQ(loadBe16(&bytes[76]), 102);

  initHeader(std::string(40, 'x'), header);
  EXPECT_EQ(areaText(header.name), std::string(31, 'x')) << "cut so that its NUL fits";
}

TEST(Header, LateCreationDateIsLoweredOnReadingAndOnWriting) {
  FileHeader header;
  header.creation_date = 2000;
  header.modification_date = 1000;
  const Bytes written = headerBytes(header);
  EXPECT_EQ(loadBe32(&written[36]), 1000u);

  Bytes file = written;
  file[39] = 0xFF;  // creation date later again
  const FileHeader read = parseHeader(file);
  EXPECT_EQ(read.creation_date, 1000u);
  EXPECT_EQ(read.modification_date, 1000u);
}

TEST(Header, ProbesTellFilesApartByTheirCreator) {
  MemoryFiles files;
  FileHeader header;
  header.type = fourCc("Any!");
  files.put("/current", headerBytes(header));
  header.creator = kLegacyCreator;
  files.put("/legacy", headerBytes(header));
  header.creator = kFormCreator;
  files.put("/form", headerBytes(header));
  files.put("/short", Bytes{'a', 'b'});

  FileHeader read;
  FileHeader last;
  EXPECT_EQ(readHeader(files, "/current", read, last), kProbeAccepted);
  EXPECT_EQ(last.type, fourCc("Any!"));
  EXPECT_EQ(readHeader(files, "/legacy", read, last), kProbeWrongCreator);
  EXPECT_EQ(last.creator, kLegacyCreator) << "the last probe is remembered whatever its result";
  EXPECT_EQ(readLegacyHeader(files, "/legacy", read, last), kProbeAccepted);
  EXPECT_EQ(readLegacyHeader(files, "/current", read, last), kProbeWrongCreator);
  EXPECT_EQ(readFormHeader(files, "/form", read), kProbeAccepted);
  EXPECT_EQ(readHeader(files, "/short", read, last), kProbeWrongCreator);
  EXPECT_EQ(read.record_count, 0xFFFF) << "past the end reads as 0xFF";
  EXPECT_EQ(readHeader(files, "/none", read, last), kProbeCannotOpen);
}

}  // namespace
}  // namespace tabelion
