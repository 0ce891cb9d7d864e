// Names of database files (8-bit paths with slashes).
#pragma once

#include <string>

#include "platform/files.h"

namespace tabelion {

std::string FileNameOf(const std::string& path);
std::string FolderOf(const std::string& path);
// The file's name without its extension.
std::string BaseNameOf(const std::string& path);
bool EqualIgnoringCase(const std::string& a, const std::string& b);  // A to Z alone

// Where a file of this name is in the folder or would be made. Names that differ in case alone are
// one file, as they are on the file systems of cards.
std::string PathIn(Files& files, const std::string& folder, const std::string& name);

// The first number from `first` up for which the folder has no file "STEMnumber.PDB", in whatever
// case.
int FirstFreeNumber(Files& files, const std::string& folder, const std::string& stem, int first);
std::string NumberedPath(const std::string& folder, const std::string& stem, int number);

}  // namespace tabelion
