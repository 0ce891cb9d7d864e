// The order of the database record's values in the file: written once, in codeDatabaseRecord, and
// walked by codecs that read, write, name and compare. Internal to engine/.
//
// A codec has a call for each form that a value has in the file, and
//   item(number, name)      what comes next
//   wantsInside(size)       whether to walk through the field definition or view of that many bytes
//                           that comes next; a codec that does not want it has passed over it
#pragma once

#include "engine/database_record.h"

namespace tabelion {

template <class Codec, class Filters>
void codeFilters(Codec& codec, Filters& filters) {
  for (auto& filter : filters) {
    codec.be16(filter.enabled);
    codec.be16(filter.field);
    codec.bytes(filter.value1);
    codec.bytes(filter.value2);
    codec.be32(filter.number1);
    codec.be32(filter.number2);
    codec.byte(filter.mode);
    codec.byte(filter.grouping);
  }
}

template <class Codec, class Keys>
void codeSortKeys(Codec& codec, Keys& keys) {
  for (auto& key : keys) {
    codec.byte(key.field);
    codec.byte(key.order);
  }
}

template <class Codec, class Field>
void codeField(Codec& codec, Field& field) {
  codec.type(field.type);
  codec.unsigned16(field.width);
  codec.byte(field.option_a);
  codec.byte(field.option_b);
  codec.signed16(field.column_width);
  codec.byte(field.export_flag);
  codec.byte(field.record_view_flag);
  codec.byte(field.option_c3);
  codec.byte(field.encrypt_flag);
  codec.bytes(field.area_d);
  codec.bytes(field.area_e);
  codec.bytes(field.area_f);
  codec.byte(field.byte_g);
  codec.byte(field.byte_h);
  codec.bytes(field.name);
  codec.bytes(field.area_i);
}

template <class Codec, class ViewType>
void codeView(Codec& codec, ViewType& view) {
  codec.bytes(view.name);
  codec.byte(view.live_update);
  codec.byte(view.action);
  codec.bytes(view.target);
  codec.bytes(view.field_order);
  codec.be32(view.item6);
  for (auto& entry : view.entries) {
    codec.signed16(entry.column_width);
    codec.byte(entry.export_flag);
    codec.byte(entry.record_view_flag);
  }
  codeFilters(codec, view.filters);
  codec.be16(view.item9);
  codeSortKeys(codec, view.sort);
}

template <class Codec, class Schema>
void codeSearchSettings(Codec& codec, Schema& schema) {
  codec.item(12, "search field");
  codec.byte(schema.search_field);
  codec.item(12, "search case");
  codec.byte(schema.search_case);
  codec.item(13, "search text");
  codec.bytes(schema.search_text);
  codec.item(14, "search match");
  codec.byte(schema.search_match);
}

// Items 15 to 28: options, orders, texts and numbers between the fields and the views.
template <class Codec, class Schema>
void codeOptions(Codec& codec, Schema& schema) {
  codec.item(15, "stamping option");
  codec.be16(schema.stamping_option);
  codec.item(15, "modification stamp option");
  codec.be16(schema.modification_stamp_option);
  codec.item(15, "");
  codec.be16(schema.item15_third);
  codec.item(16, "sort pending");
  codec.byte(schema.sort_pending);
  codec.item(17, "display order");
  codec.bytes(schema.display_order);
  codec.item(18, "");
  codec.bytes(schema.item18);
  codec.item(19, "");
  codec.bytes(schema.item19);
  codec.item(20, "");
  codec.byte(schema.item20);
  codec.item(21, "security word");
  codec.low16(schema.security_word);
  codec.item(22, "edition");
  codec.bytes(schema.edition);
  codec.item(23, "category");
  codec.bytes(schema.category);
  codec.item(23, "author");
  codec.bytes(schema.author);
  codec.item(23, "access password");
  codec.bytes(schema.access_password);
  codec.item(23, "");
  codec.bytes(schema.item23_rest);
  codec.item(24, "current record index");
  codec.be16(schema.current_record_index);
  codec.item(25, "");
  codec.bytes(schema.item25);
  codec.item(26, "next record serial");
  codec.be16(schema.next_serial);
  codec.item(27, "");
  codec.be32(schema.item27);
  codec.item(28, "label width adjustment");
  codec.signed16(schema.label_width_adjustment);
}

// Items 34 to 41, behind the views.
template <class Codec, class Schema>
void codeTail(Codec& codec, Schema& schema) {
  codec.item(34, "number of views");
  codec.be16(schema.view_count);
  codec.item(35, "current view");
  codec.byte(schema.current_view);
  codec.item(35, "");
  codec.bytes(schema.item35_rest);
  codec.item(35, "encryption mode");
  codec.byte(schema.encryption_mode);
  codec.item(36, "password check block");
  codec.bytes(schema.password_check);
  codec.item(36, "");
  codec.byte(schema.item36_last);
  codec.item(37, "password check sum");
  codec.byte(schema.password_check_sum);
  codec.item(37, "password check present");
  codec.byte(schema.password_check_present);
  codec.item(38, "code page");
  codec.bytes(schema.code_page);
  codec.item(39, "");
  codec.be32(schema.item39);
  codec.item(40, "alarm fields");
  codec.bytes(schema.alarm_fields);
  codec.item(40, "");
  codec.bytes(schema.item40_rest);
  codec.item(41, "");
  codec.bytes(schema.item41);
}

template <class Codec, class Schema>
void codeDatabaseRecord(Codec& codec, Schema& schema) {
  codec.item(1, "head block");
  codec.bytes(schema.head);
  codec.item(2, "marker");
  codec.bytes(schema.marker);
  codec.item(3, "format version");
  codec.byte(schema.format_version);
  codec.item(4, "auto-number counter");
  codec.be32(schema.next_auto_number);
  codec.item(5, "filters");
  codeFilters(codec, schema.filters);
  codec.item(6, "sort keys");
  codeSortKeys(codec, schema.sort);
  codec.item(7, "");
  codec.bytes(schema.item7);
  codec.item(8, "");
  codec.be16(schema.item8[0]);
  codec.be16(schema.item8[1]);
  codec.item(9, "");
  codec.bytes(schema.item9);
  codec.item(10, "");
  codec.bytes(schema.item10);
  codec.item(11, "field definitions");
  for (auto& field : schema.fields) {
    if (codec.wantsInside(kFieldDefinitionSize)) codeField(codec, field);
  }
  codeSearchSettings(codec, schema);
  codeOptions(codec, schema);
  codec.item(29, "");
  codec.bytes(schema.item29);
  codec.item(30, "snooze minutes");
  codec.be16(schema.snooze_minutes);
  codec.item(31, "");
  codec.bytes(schema.item31);
  codec.item(32, "alarm switches");
  codec.bytes(schema.alarm_switches);
  codec.item(33, "views");
  for (auto& view : schema.views) {
    if (codec.wantsInside(kViewSize)) codeView(codec, view);
  }
  codeTail(codec, schema);
}

}  // namespace tabelion
