/* Splits a multipart body, as cameras send it, into its parts: each has a small header, with a delimiter line between them. The
 * input may be cut anywhere and may be wrong in every way; memory stays bounded. */
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/** A part that is longer, or has a longer header, is skipped. */
inline constexpr size_t LargestPart = 4 * 1024 * 1024;
inline constexpr size_t LargestPartHeader = 8 * 1024;

/** Given: the body was given by its announced length, and is held until the bytes after it show whether the length was right. */
enum class MultipartState { Seek, Header, Body, Given };

struct Multipart {
  std::string boundary;  ///< Without leading dashes; empty until a line shows it.
  MultipartState state = MultipartState::Seek;
  std::vector<uint8_t> held;  ///< Bytes not used up, from `begin` on.
  size_t begin = 0;
  size_t searched = 0;  ///< Bytes from `begin` on that are known to hold no delimiter.
  size_t length = 0;    ///< Of the part's body; 0 if the header has none or a wrong one.
};

/** Is this the type of a multipart body? Gives its boundary then, without leading dashes; it may be empty. */
bool Multipart_Type(const std::string& type, std::string* boundary);

/** Adds the next bytes of the body. All parts should have been taken before. */
void Multipart_Add(Multipart* multipart, std::span<const uint8_t> bytes);

/** Gives the body of the next complete part, valid until bytes are added; false when more bytes are needed. A part whose
 * header has no length is complete when the next delimiter is there. A part with a length is given as soon as so many bytes are
 * there, or up to a delimiter before that. If the bytes that follow show that the length was too small, the part is given again,
 * up to its delimiter. */
bool Multipart_Next(Multipart* multipart, std::span<const uint8_t>* body);
