/* Files that appear whole under their name or not at all. */
#pragma once

#include <cstdio>
#include <functional>
#include <span>
#include <string>

/** Writes a file's content. False when that can't be done: with *error set as the caller is to see it, or with *error empty
 *  when a write to the file has failed. */
using FileFiller = std::function<bool(FILE* file, std::string* error)>;

/** Has a file filled beside `path` and gives it that name when it is complete; what was there is replaced. A device or pipe is
 *  written to as it stands. False, with one line in *error and nothing left behind, when that fails. */
bool Write_Whole_File(const std::string& path, const FileFiller& fill, std::string* error);

/** Writes the bytes; for fillers. */
bool Put_Bytes(FILE* file, std::span<const uint8_t> bytes);
