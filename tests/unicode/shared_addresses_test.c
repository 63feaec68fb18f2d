/* A program that is linked directly and not position-independent: the addresses of the coders that it passes are its
   own jump slots, and the drivers must know them all the same. They show it at the edges: the coders by themselves
   would touch the page behind the buffer. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include "vxnls/unicode.h"

int main(void) {
  const size_t page = (size_t)sysconf(_SC_PAGESIZE);
  uint8_t* const memory = mmap(NULL, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED || mprotect(memory + page, page, PROT_NONE) != 0) return 2;
  uint8_t* const last = memory + page - 1;
  int64_t written = -1;

  /* Without an address of its own the program would show nothing. */
  void* const by_library = dlsym(RTLD_NEXT, "UTF8_UTF32");
  VXDecoder const by_program = &UTF8_UTF32;
  if (by_library == NULL || memcmp(&by_library, &by_program, sizeof by_library) == 0) return 3;

  static const VXEncoder encoders[] = {&COPY_UTF32,  &COPY_UTF32_SWAP,  &UTF32_UTF16s,
                                       &UTF32_UTF16, &UTF32_UTF16_SWAP, &UTF32_UTF16s_SWAP};
  const uint8_t text[4] = {'A', 0, 0, 0};
  for (size_t i = 0; i < sizeof encoders / sizeof *encoders; ++i) {
    uint8_t out[8];
    *last = 0xFF; /* counts the continuation bytes behind it */
    const VXStatus to = ConvertToUTF32(last, 1, out, 8, &written, &UTF8_UTF32, encoders[i]);
    if (to != VX_E_SEQUENCE || written != 0) return 4;
    const VXStatus from = ConvertFromUTF32(text, 4, last, 1, &written, encoders[i], &Byte2DWord);
    if (from != VX_E_ROOM || written != 0) return 5;
  }
  const VXStatus status = ConvertFromUTF32(text, 4, last, 1, &written, &UTF32_UTF8, &Byte2DWord);
  return status == 0 && written == 1 && *last == 'A' ? 0 : 6;
}
