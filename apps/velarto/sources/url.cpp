#include "apps/velarto/sources/url.h"

#include <algorithm>
#include <cctype>

static bool Starts_With_Any_Case(const std::string& text, const std::string& start) {
  const auto same = [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); };
  return text.size() >= start.size() && std::equal(start.begin(), start.end(), text.begin(), same);
}

bool Url_Is_Http(const std::string& name) {
  return Starts_With_Any_Case(name, "http://") || Starts_With_Any_Case(name, "https://");
}

/** %41 becomes A. */
static std::string Decoded(const std::string& text) {
  std::string decoded;
  for (size_t i = 0; i < text.size(); ++i) {
    const auto digit = [&](size_t at) { return at < text.size() && std::isxdigit(static_cast<unsigned char>(text[at])); };
    if (text[i] != '%' || !digit(i + 1) || !digit(i + 2)) {
      decoded += text[i];
      continue;
    }
    decoded += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
    i += 2;
  }
  return decoded;
}

/** Where the user part ends: at the last @ before the path. An unescaped slash in the password looks like the start of the path,
 * after a port that is no number; even so the password must not be shown as part of the path. */
static size_t User_End(const std::string& name, size_t begin) {
  const size_t pathBegin = std::min(name.find_first_of("/?#", begin), name.size());
  const std::string authority = name.substr(begin, pathBegin - begin);
  const size_t at = authority.rfind('@');
  if (at != std::string::npos) return begin + at;
  const size_t colon = authority.rfind(':');
  const bool port = colon == std::string::npos || authority.find(']', colon) != std::string::npos ||
                    authority.find_first_not_of("0123456789", colon + 1) == std::string::npos;
  return port ? std::string::npos : name.rfind('@');
}

Url Url_Split(const std::string& name) {
  const size_t scheme = name.find("://");
  if (scheme == std::string::npos) return {name, {}, {}};
  const size_t begin = scheme + 3;
  const size_t end = User_End(name, begin);
  if (end == std::string::npos || end < begin) return {name, {}, {}};
  const std::string part = name.substr(begin, end - begin);
  const size_t colon = part.find(':');
  Url url = {name.substr(0, begin) + name.substr(end + 1), Decoded(part.substr(0, colon)), {}};
  if (colon != std::string::npos) url.password = Decoded(part.substr(colon + 1));
  return url;
}
