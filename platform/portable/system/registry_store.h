/* What the registry holds. For the files of the layer alone. */
#pragma once

#include "platform/portable/system/registry.h"

#include <map>
#include <mutex>
#include <string>
#include <vector>

struct RegistryValue {
  DWORD type = REG_NONE;
  std::vector<uint8_t> data;
};
using RegistryKey = std::map<std::string, RegistryValue>;

struct Registry {
  std::mutex lock;
  std::map<std::string, RegistryKey> keys;  ///< By root and path. This and all names within in lower case.
};

/** The one there is, made when it is first asked for: a library may ask while it is loaded. */
Registry& The_Registry();
/** Null if there is none. Under the lock. */
const RegistryValue* Find_Value(const std::string& path, const std::string& name);
std::string Lower_Case(std::string text);
