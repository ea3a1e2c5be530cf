#include "apps/velarto/sources/multipart.h"

#include <algorithm>
#include <cctype>
#include <string_view>

static constexpr size_t LongestBoundary = 200;
/** Blanks allowed at the end of a delimiter line. */
static constexpr size_t MostBlanks = 64;

/* ---- The type ------------------------------------------------------------------------------------------------------------- */

static std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

static std::string Without_Dashes(const std::string& text) {
  const size_t begin = std::min(text.find_first_not_of('-'), text.size());
  return text.size() - begin > LongestBoundary ? "" : text.substr(begin);
}

bool Multipart_Type(const std::string& type, std::string* boundary) {
  static const std::string wanted = "boundary";
  const std::string lower = Lower(type);
  if (!lower.starts_with("multipart/")) return false;
  boundary->clear();
  const size_t name = lower.find(wanted);
  const size_t sign = name == std::string::npos ? name : lower.find_first_not_of(" \t", name + wanted.size());
  const size_t begin = sign == std::string::npos || lower[sign] != '=' ? sign : lower.find_first_not_of(" \t", sign + 1);
  if (begin == std::string::npos || begin == sign) return true;
  const bool quoted = lower[begin] == '"';
  const std::string value = type.substr(begin + quoted);
  *boundary = Without_Dashes(value.substr(0, value.find_first_of(quoted ? "\"" : "; \t\r\n")));
  return true;
}

/* ---- Bytes held ----------------------------------------------------------------------------------------------------------- */

static std::string_view Held(const Multipart& multipart) {
  return {reinterpret_cast<const char*>(multipart.held.data()) + multipart.begin, multipart.held.size() - multipart.begin};
}

static void Pass(Multipart* multipart, size_t count, MultipartState state) {
  multipart->begin += count;
  multipart->searched = 0;
  multipart->state = state;
}

void Multipart_Add(Multipart* multipart, std::span<const uint8_t> bytes) {
  const auto begin = multipart->held.begin();
  multipart->held.erase(begin, begin + static_cast<std::ptrdiff_t>(multipart->begin));
  multipart->begin = 0;
  multipart->held.insert(multipart->held.end(), bytes.begin(), bytes.end());
}

/* ---- Delimiters ----------------------------------------------------------------------------------------------------------- */

struct Delimiter {
  size_t begin = 0, end = 0;  ///< From the dashes before the boundary to the end of the line.
  bool last = false;          ///< The one that closes the body.
};

enum class Fit { None, Open, Whole };

/** Are the bytes around a boundary at `at` a delimiter? Open: that depends on the next bytes. */
static Fit Fit_Delimiter(std::string_view held, size_t at, size_t boundarySize, Delimiter* found) {
  size_t begin = at;
  while (begin > 0 && held[begin - 1] == '-') --begin;
  if (at - begin < 2) return Fit::None;
  size_t end = at + boundarySize;
  const size_t dashes = std::min<size_t>(held.find_first_not_of('-', end), held.size()) - end;
  *found = {begin, end + 2, true};
  if (dashes >= 2) return Fit::Whole;
  end += dashes;
  const size_t blanksBegin = end;
  while (end < held.size() && (held[end] == ' ' || held[end] == '\t' || held[end] == '\r')) ++end;
  if (end - blanksBegin > MostBlanks) return Fit::None;
  if (end == held.size()) return Fit::Open;
  *found = {begin, end + 1, false};
  return held[end] == '\n' ? Fit::Whole : Fit::None;
}

/** The first delimiter; false when there is none yet. */
static bool Find_Delimiter(Multipart* multipart, Delimiter* found) {
  const std::string_view held = Held(*multipart);
  const size_t size = multipart->boundary.size();
  for (size_t at = held.find(multipart->boundary, multipart->searched); at != std::string_view::npos;
       at = held.find(multipart->boundary, at + 1)) {
    const Fit fit = Fit_Delimiter(held, at, size, found);
    if (fit == Fit::Whole) return true;
    multipart->searched = at;
    if (fit == Fit::Open) return false;
  }
  multipart->searched = std::max(multipart->searched, held.size() - std::min(held.size(), size));
  return false;
}

/** Takes the boundary from the first line that looks like a delimiter. */
static bool Learn_Boundary(Multipart* multipart) {
  for (;;) {
    const std::string_view held = Held(*multipart);
    const size_t end = held.find('\n');
    if (end == std::string_view::npos) {
      if (held.size() > LargestPartHeader) Pass(multipart, held.size(), MultipartState::Seek);
      return false;
    }
    const std::string line(held.substr(0, std::min(held.find_last_not_of("\r\n \t", end) + 1, end)));
    if (line.starts_with("--")) multipart->boundary = Without_Dashes(line);
    if (!multipart->boundary.empty()) return true;
    Pass(multipart, end + 1, MultipartState::Seek);
  }
}

/* ---- Parts ---------------------------------------------------------------------------------------------------------------- */

/** Goes to the end of the next delimiter. */
static bool Seek_Part(Multipart* multipart) {
  if (multipart->boundary.empty() && !Learn_Boundary(multipart)) return false;
  Delimiter delimiter;
  if (Find_Delimiter(multipart, &delimiter)) {
    Pass(multipart, delimiter.end, delimiter.last ? MultipartState::Seek : MultipartState::Header);
    return true;
  }
  // Of the searched bytes only dashes at the end still matter.
  const size_t searched = multipart->searched;
  if (searched > 2) Pass(multipart, searched - 2, MultipartState::Seek);
  return false;
}

/** The number in a line "Content-Length: NUMBER", too large if it has many digits; `length` otherwise. */
static size_t Read_Length(std::string_view line, size_t length) {
  static const std::string name = "content-length:";
  if (Lower(std::string(line.substr(0, name.size()))) != name) return length;
  const size_t begin = line.find_first_not_of(" \t", name.size());
  if (begin == std::string_view::npos) return length;
  const size_t digits = std::min(line.find_first_not_of("0123456789", begin), line.size()) - begin;
  if (digits > 9) return LargestPart + 1;
  return digits == 0 ? length : std::stoul(std::string(line.substr(begin, digits)));
}

static bool Read_Header(Multipart* multipart) {
  const std::string_view held = Held(*multipart);
  size_t length = 0;
  for (size_t begin = 0, end = held.find('\n'); end != std::string_view::npos; begin = end + 1, end = held.find('\n', begin)) {
    const std::string_view line = held.substr(begin, end - begin);
    if (line.empty() || line == "\r") {
      multipart->length = length > LargestPart ? 0 : length;
      Pass(multipart, end + 1, MultipartState::Body);
      return true;
    }
    length = Read_Length(line, length);
  }
  if (held.size() <= LargestPartHeader) return false;
  Pass(multipart, 0, MultipartState::Seek);
  return true;
}

/** Body and delimiter of a part; one line end before the delimiter belongs to it. A delimiter ends a body of any length. */
static bool Read_Body(Multipart* multipart, std::string_view* body) {
  const std::string_view held = Held(*multipart);
  const size_t length = multipart->length;
  Delimiter delimiter;
  const bool found = Find_Delimiter(multipart, &delimiter);
  if (length > 0 && !(found && delimiter.end <= length)) {
    if (held.size() < length) return false;
    *body = held.substr(0, length);
    multipart->state = MultipartState::Given;
    return true;
  }
  if (!found) {
    if (held.size() > LargestPart) Pass(multipart, multipart->searched - 2, MultipartState::Seek);
    return false;
  }
  *body = held.substr(0, delimiter.begin);
  if (body->ends_with('\n')) body->remove_suffix(1);
  if (body->ends_with('\r')) body->remove_suffix(1);
  Pass(multipart, delimiter.end, delimiter.last ? MultipartState::Seek : MultipartState::Header);
  return true;
}

/** Drops a body that was given by its length, once a delimiter follows it; otherwise the body is read again, up to the next
 *  delimiter. */
static bool Check_Given(Multipart* multipart) {
  const std::string_view next = Held(*multipart).substr(multipart->length, LargestPartHeader);
  const std::string_view line = next.substr(std::min(next.find_first_not_of("\r\n"), next.size()));
  if ((line.empty() || line == "-") && next.size() < LargestPartHeader) return false;
  if (line.empty() || line.starts_with("--")) {
    Pass(multipart, multipart->length, MultipartState::Seek);
  } else {
    multipart->length = 0;
    multipart->state = MultipartState::Body;
  }
  return true;
}

bool Multipart_Next(Multipart* multipart, std::span<const uint8_t>* body) {
  for (;;) {
    if (multipart->state == MultipartState::Given && !Check_Given(multipart)) return false;
    if (multipart->state == MultipartState::Seek && !Seek_Part(multipart)) return false;
    if (multipart->state == MultipartState::Header && !Read_Header(multipart)) return false;
    if (multipart->state != MultipartState::Body) continue;
    std::string_view part;
    if (!Read_Body(multipart, &part)) return false;
    *body = {reinterpret_cast<const uint8_t*>(part.data()), part.size()};
    return true;
  }
}
