// Numbers as the device reads them, whose long has 32 bits: what does not fit saturates.
#ifndef CMPNT_PKGFILE_NUMBER_HH
#define CMPNT_PKGFILE_NUMBER_HH

#include <stdint.h>

// strtol, base 10; the end, unless null, is set to what follows the number.
int32_t decimal_number(const char *text, char **end = nullptr);

// strtoul: "0x" hexadecimal, "0" octal, else decimal.
uint32_t prefixed_number(const char *text);

#endif
