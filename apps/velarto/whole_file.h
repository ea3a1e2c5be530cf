/* Files that appear under their name only when complete. */
#pragma once

#include <cstdio>
#include <functional>
#include <span>
#include <string>

/** Writes a file's content. False on a failure: with *error as the message for the user, or with *error empty when a write to the
 *  file has failed. */
using FileFiller = std::function<bool(FILE* file, std::string* error)>;

/** Fills a temporary file next to `path`, and renames it when it is complete; an older file is replaced. A device or pipe is
 * written to directly. False, with one line in *error, on a failure; the temporary file is removed then. */
bool Write_Whole_File(const std::string& path, const FileFiller& fill, std::string* error);

/** Writes the bytes; for fillers. */
bool Put_Bytes(FILE* file, std::span<const uint8_t> bytes);
