#include "plugin/settings.h"

#include "resources/resources.h"

#include "platform/win32.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr char internetKey[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
constexpr DWORD LeastConnections = 256;
constexpr DWORD ListSize = 2048;
/** The size of the list, including its zero, plus the length of the type must be below this. */
constexpr DWORD ListLimit = 2046;
constexpr DWORD MimeLength = sizeof MimeType - 1;

/** A value of up to four bytes, and its size. The size is not reset between reads: a value that is longer than what the previous
 *  read left counts as missing, and so does one of more than four bytes. */
struct ShortValue {
  uint8_t data[4] = {};
  DWORD size = sizeof data;
};

bool Read_Value(HKEY key, const char* name, ShortValue* value) {
  value->size = std::min<DWORD>(value->size, sizeof value->data);  // A refused value has left the size that it needs.
  return RegQueryValueExA(key, name, nullptr, nullptr, value->data, &value->size) == ERROR_SUCCESS;
}

void Write_Number(HKEY key, const char* name, DWORD number) {
  RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
}

void Raise_Connections(HKEY key) {
  DWORD connections = 0, size = sizeof connections;
  const bool read = RegQueryValueExA(key, "MaxConnectionsPer1_0Server", nullptr, nullptr, reinterpret_cast<BYTE*>(&connections),
                                     &size) == ERROR_SUCCESS;
  if (read && connections >= LeastConnections) return;
  Write_Number(key, "MaxConnectionsPer1_0Server", LeastConnections);
  Write_Number(key, "MaxConnectionsPerServer", LeastConnections);
}

void Exclude_From_Cache(HKEY key) {
  constexpr char name[] = "MimeExclusionListForCache";
  char list[ListSize + 1] = {};  // One byte more than is read, so that a value without its zero gets one.
  DWORD size = ListSize;
  if (RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(list), &size) != ERROR_SUCCESS) return;
  if (size == 0 || std::strstr(list, MimeType) || size + MimeLength >= ListLimit) return;
  const size_t length = std::strlen(list);
  list[length] = ' ';
  std::memcpy(list + length + 1, MimeType, sizeof MimeType);
  RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(list), static_cast<DWORD>(length + 1 + sizeof MimeType));
}

}  // namespace

MakerSettings Read_Maker_Settings() {
  MakerSettings settings;
  HKEY key = nullptr;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, MakerKey, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) return settings;
  ShortValue value;
  if (Read_Value(key, "Decoder_Speed", &value)) settings.decoderSpeed = (value.data[0] ^ 0x80) - 0x80;  // A signed byte.
  if (Read_Value(key, "Mouse_LButton", &value)) settings.mouseLButton = value.data[0] == 1;
  settings.rightButtonRead = Read_Value(key, "Mouse_RButton", &value);
  if (settings.rightButtonRead) settings.mouseRButton = value.data[0] == 1;
  RegCloseKey(key);
  return settings;
}

int32_t Update_Internet_Settings() {
  HKEY key = nullptr;
  if (RegCreateKeyExA(HKEY_CURRENT_USER, internetKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr) != ERROR_SUCCESS) {
    return 0;
  }
  Raise_Connections(key);
  Exclude_From_Cache(key);
  RegCloseKey(key);
  return 1;
}
