// Statistics over one field of the records that pass the filter, as the text that people see.
//
// A report reads what the field's stored form says as text, and reads that text back as a person's
// input would be read: so a date shown with two digits of the year, or an hour shown on a clock
// that the user did not choose, counts as what it reads as.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "query/filter.h"
#include "query/query_settings.h"

namespace tabelion {

inline constexpr std::string_view kNoReportFieldText =
    "You must first select a field to run the report on!";

// The slots that a report can be run on, in field order: types 2, 3, 5, 8, 9 and 15.
std::vector<int> reportFields(const DatabaseRecord& schema);

template <class Number>
struct ReportNumbers {
  Number minimum = 0;
  Number maximum = 0;
  Number sum = 0;
  Number least_total = 0;  // the lowest that the running sum came to
  Number most_total = 0;
  Number average = 0;
};

// What a report found. Records without a value count as well, as what no text reads as.
struct ReportFigures {
  // As what the field is reported, a field type code: a calculated field as the type of its
  // result; FieldType::kUnused: there is no report for it, and nothing below counts.
  FieldType type = FieldType::kUnused;
  std::int64_t count = 0;             // of records
  ReportNumbers<std::int64_t> whole;  // 2; 8 in days from 1904-01-01; 9 in seconds
  ReportNumbers<double> real;         // 3
  std::int64_t checked = 0;           // 5
};
// `values` gets what each record counted as, in record order: numbers, days, seconds; nothing for
// check boxes.
ReportFigures reportFigures(const Database& database, int slot, const QuerySettings& settings,
                            const LinkFilter* link = nullptr,
                            std::vector<double>* values = nullptr);

// The decimals of a report's figures on a field of numbers.
int reportDecimals(const FieldDefinition& field);

// The whole text with its line ends (CR LF), in the database's code page. A field of a type without
// a report gives an empty text.
std::string reportText(const ReportFigures& figures, const FieldDefinition& field,
                       const FormatSettings& formats);
std::string runReport(const Database& database, int slot, const QuerySettings& settings,
                      const LinkFilter* link = nullptr);

}  // namespace tabelion
