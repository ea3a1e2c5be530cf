/* What the clients have in common: the DLL's exports by name or by ordinal, and calls that watch the stack. */
#include <windows.h>

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* The picture that both feed, and its BMP file as each way to the DLL gives it. */
enum { Width = 96, Height = 64, Quality = 40, BmpSize = Width * Height * 3 + 54, MostWays = 5 };
static uint8_t frame[4096], bmp[MostWays][BmpSize];
static uint32_t frameSize;
static HMODULE library;
static int byOrdinal, failures;
#define CHECK(condition) ((condition) ? (void)0 : (void)(++failures, printf("line %d: %s\n", __LINE__, #condition)))

/* An export as its caller declares it. Arguments and results are words of 32 bits; a call leaves that many bytes of each argument
 * on the stack: 0 under stdcall, 4 under cdecl. */
typedef struct {
  const char* name;
  int ordinal, words, left;
} Declaration;
#define CALL(declaration, ...) Call(&declaration, (const uint32_t[8]){__VA_ARGS__})
#define WORD(pointer) ((uint32_t)(uintptr_t)(pointer))

static inline void* Find(const char* name, int ordinal) {
  void* const found = (void*)GetProcAddress(library, byOrdinal ? MAKEINTRESOURCEA(ordinal) : name);
  if (!found) exit(printf("%s is missing\n", name));
  return found;
}

static inline uint32_t Call(const Declaration* declaration, const uint32_t* words) {
  uint32_t result, left, count = (uint32_t)declaration->words;
  __asm__ volatile(
      "movl %%esp, %%ebx\n"
      "1: decl %%ecx\n js 2f\n pushl (%%esi,%%ecx,4)\n jmp 1b\n"
      "2: call *%%edi\n movl %%ebx, %%edx\n subl %%esp, %%edx\n movl %%ebx, %%esp"
      : "=a"(result), "=d"(left), "+c"(count)
      : "S"(words), "D"(Find(declaration->name, declaration->ordinal))
      : "ebx", "memory", "cc");
  if (left != (uint32_t)(declaration->words * declaration->left)) {
    ++failures;
    printf("%s with %d words left %u bytes\n", declaration->name, declaration->words, left);
  }
  return result;
}

/* Loads DLL and frame. Each line of the list gives one address by name and ordinal, and there is no ordinal around them. */
static inline void Begin(void) {
  char line[256], name[128];
  int ordinal, found = 0;
  FILE *const list = fopen("exports.list", "r"), *const file = fopen("tile-96x64-q40.jpg", "rb");
  library = LoadLibraryA("velarto.dll");
  if (!library || !list || !file) exit(printf("no velarto.dll, no list, or no frame\n"));
  frameSize = (uint32_t)fread(frame, 1, sizeof frame, file);
  while (fgets(line, sizeof line, list)) {
    if (sscanf(line, "%d %127s", &ordinal, name) != 2) continue;
    const FARPROC address = GetProcAddress(library, name);
    if (address && address == GetProcAddress(library, MAKEINTRESOURCEA(ordinal))) ++found;
  }
  CHECK(found == 78 && !GetProcAddress(library, MAKEINTRESOURCEA(79)) && !GetProcAddress(library, MAKEINTRESOURCEA(0)));
}

/* All ways gave the same picture, whose sum tells whether the other client got it too. */
static inline int End(int ways) {
  uint32_t sum = 0;
  for (int way = 1; way < ways; ++way) CHECK(memcmp(bmp[way], bmp[0], BmpSize) == 0);
  for (int i = 0; i < BmpSize; ++i) sum = sum * 31 + bmp[0][i];
  if (!failures) printf("ok: %d ways to picture %08x\n", ways, (unsigned)sum);
  return failures != 0;
}
