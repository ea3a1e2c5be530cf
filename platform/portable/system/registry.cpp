#include "platform/portable/system/registry.h"

#include "platform/portable/system/registry_store.h"
#include "platform/portable/system/seam.h"

#include <cctype>
#include <cstring>
#include <new>

/** An open key. */
struct HKEY__ {
  std::string path;
  REGSAM access;
};

Registry& The_Registry() {
  static Registry registry;
  return registry;
}

std::string Lower_Case(std::string text) {
  for (char& letter : text) letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
  return text;
}

const RegistryValue* Find_Value(const std::string& path, const std::string& name) {
  const Registry& registry = The_Registry();
  const auto key = registry.keys.find(path);
  if (key == registry.keys.end()) return nullptr;
  const auto value = key->second.find(name);
  return value == key->second.end() ? nullptr : &value->second;
}

namespace {

/** The path with its root's name; empty for another root. */
std::string Full_Path(HKEY root, LPCSTR path) {
  if (!path || (root != HKEY_CURRENT_USER && root != HKEY_LOCAL_MACHINE)) return "";
  return Lower_Case((root == HKEY_CURRENT_USER ? "HKEY_CURRENT_USER\\" : "HKEY_LOCAL_MACHINE\\") + std::string(path));
}

LSTATUS Open_Key(const std::string& path, REGSAM access, HKEY* key) {
  *key = new (std::nothrow) HKEY__{path, access};
  if (!*key) return ERROR_ACCESS_DENIED;
  Object_Made();
  return ERROR_SUCCESS;
}

LSTATUS Copy_Value(const RegistryValue& value, BYTE* data, DWORD* size) {
  const auto bytes = static_cast<DWORD>(value.data.size());
  if (!size) return ERROR_SUCCESS;
  const DWORD room = *size;
  *size = bytes;
  if (!data) return ERROR_SUCCESS;
  if (bytes > room) return ERROR_MORE_DATA;
  if (bytes > 0) std::memcpy(data, value.data.data(), bytes);
  if (value.type == REG_SZ && bytes < room && (bytes == 0 || data[bytes - 1] != 0)) data[bytes] = 0;
  return ERROR_SUCCESS;
}

}  // namespace

LSTATUS RegOpenKeyExA(HKEY root, LPCSTR path, DWORD, REGSAM access, HKEY* key) {
  if (!key) return ERROR_INVALID_PARAMETER;
  const std::string full = Full_Path(root, path);
  if (full.empty()) return ERROR_INVALID_HANDLE;
  Registry& registry = The_Registry();
  const std::lock_guard guard(registry.lock);
  return registry.keys.contains(full) ? Open_Key(full, access, key) : ERROR_FILE_NOT_FOUND;
}

LSTATUS RegCreateKeyExA(HKEY root, LPCSTR path, DWORD, LPSTR, DWORD, REGSAM access, const SECURITY_ATTRIBUTES*, HKEY* key,
                        DWORD*) {
  if (!key) return ERROR_INVALID_PARAMETER;
  if (Step_Fails(RigStep::CreateRegistryKey)) return ERROR_ACCESS_DENIED;
  const std::string full = Full_Path(root, path);
  if (full.empty()) return ERROR_INVALID_HANDLE;
  Registry& registry = The_Registry();
  const std::lock_guard guard(registry.lock);
  registry.keys.try_emplace(full);
  return Open_Key(full, access, key);
}

LSTATUS RegQueryValueExA(HKEY key, LPCSTR name, DWORD*, DWORD* type, BYTE* data, DWORD* size) {
  if (!key) return ERROR_INVALID_HANDLE;
  if (data && !size) return ERROR_INVALID_PARAMETER;
  if (!(key->access & KEY_QUERY_VALUE)) return ERROR_ACCESS_DENIED;
  const std::lock_guard guard(The_Registry().lock);
  const RegistryValue* const value = Find_Value(key->path, Lower_Case(name ? name : ""));
  if (!value) return ERROR_FILE_NOT_FOUND;
  if (type) *type = value->type;
  return Copy_Value(*value, data, size);
}

LSTATUS RegSetValueExA(HKEY key, LPCSTR name, DWORD, DWORD type, const BYTE* data, DWORD size) {
  if (!key) return ERROR_INVALID_HANDLE;
  if (!(key->access & KEY_SET_VALUE) || Step_Fails(RigStep::SetRegistryValue)) return ERROR_ACCESS_DENIED;
  Registry& registry = The_Registry();
  const std::lock_guard guard(registry.lock);
  registry.keys[key->path][Lower_Case(name ? name : "")] = {type, {data, data + size}};
  return ERROR_SUCCESS;
}

LSTATUS RegCloseKey(HKEY key) {
  if (!key) return ERROR_INVALID_HANDLE;
  delete key;
  Object_Ended();
  return ERROR_SUCCESS;
}
