// The benchmarks of one process, one source for each topic. Each leaves the database as it was.
#pragma once

#include <benchmark/benchmark.h>

#include <string>

#include "engine/database.h"
#include "records.h"

namespace tabelion {

void registerChanges(const std::string& path);
void registerCipher(const std::string& path);
void registerRecompute(const std::string& path);
void registerReport(const Database& database);
void registerSearch(Database& database);
void registerSort(Database& database);
void registerSqlite(const Database& database);

}  // namespace tabelion
