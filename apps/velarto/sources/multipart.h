/* Takes a multipart body apart, as cameras send it: part after part, each with a small head, a delimiter line between them. What
 * comes in may be cut anywhere and lie about everything; memory stays bounded. */
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/** A part with more bytes, or a part's head, is passed over. */
inline constexpr size_t LargestPart = 4 * 1024 * 1024;
inline constexpr size_t LargestPartHead = 8 * 1024;

/** Given: the body was, by its announced length, and is held until what stands behind it tells whether that was right. */
enum class MultipartState { Seek, Head, Body, Given };

struct Multipart {
  std::string boundary;  ///< Without dashes ahead of it; empty until a line shows it.
  MultipartState state = MultipartState::Seek;
  std::vector<uint8_t> held;  ///< Bytes not used up, from `begin` on.
  size_t begin = 0;
  size_t searched = 0;  ///< Bytes from `begin` on that are known to hold no delimiter.
  size_t length = 0;    ///< Of the part's body; 0 when its head doesn't tell, or lies.
};

/** Is this the type of a multipart body? Gives its boundary then, without dashes ahead of it; it may be empty. */
bool Multipart_Type(const std::string& type, std::string* boundary);

/** Adds the next bytes of the body. All parts should have been taken before. */
void Multipart_Add(Multipart* multipart, std::span<const uint8_t> bytes);

/** Gives the body of the next complete part, valid until bytes are added; false when more bytes are needed. A part whose head
 * tells no length is complete when the next delimiter is there. One whose length is wrong is given up to the delimiter; where the
 * length ends in the body or in the delimiter, it was given so before, as nobody waits for the next part to show that a length
 * is right. */
bool Multipart_Next(Multipart* multipart, std::span<const uint8_t>* body);
