/* The resident memory of the process, as Linux counts it. */
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>

/** Resident bytes of the process; 0 if unknown. */
inline int64_t Resident_Bytes() {
  long long total = 0, resident = 0;
  FILE* const file = std::fopen("/proc/self/statm", "r");
  if (!file) return 0;
  if (std::fscanf(file, "%lld %lld", &total, &resident) != 2) resident = 0;
  std::fclose(file);
  return int64_t{resident} * sysconf(_SC_PAGESIZE);
}
