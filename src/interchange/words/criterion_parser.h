// The part of a condition behind the field: operator and value.
#pragma once

#include "engine/database.h"
#include "interchange/text_encoding.h"
#include "interchange/words/word_reader.h"

namespace tabelion {

// Whether the words of an operator stand next; they are then read.
bool readOperator(WordReader& words);

// Reads all that is left of the words, an operator and its value, into the criterion, whose field
// is set and can be filtered by. Errors are kept by the reader.
void readCriterionValue(WordReader& words, const Database& database, const TextEncoding& encoding,
                        FilterBlock& criterion);

}  // namespace tabelion
