/* A program in C: the host, a locale's table of functions, and a function by its name. */
#include <stdio.h>

#include "vxnls/number_parse.h"
#include "vxnls/vxhost.h"

int main(void) {
  VXHost* host = NULL;
  VXLocale* locale = NULL;
  uint8_t text[64];
  int64_t length = 0;
  int64_t consumed = 0;
  double number = 0;
  if (vxhostOpen(NULL, &host) != 0 || vxhostLocale(host, "de_DE", "Europe/Berlin", 0, &locale) != 0) return 1;
  if (locale->ops.NLSDatetimeFormatU(locale, 0, text, sizeof text, &length, 2110889109.0) != 0) return 2;
  if (NLSBufToDoubleU(locale, (const uint8_t*)"1.234,5", 7, &number, &consumed) != 0) return 3;
  printf("%.*s %.1f\n", (int)length, (const char*)text, number);
  vxhostClose(host);
  return vxhostAlive() == 0 ? 0 : 4;
}
