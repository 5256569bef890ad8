// Numbers as the device reads them, whose long has 32 bits: what does not fit saturates.
#ifndef CMPNT_PKGFILE_NUMBER_HH
#define CMPNT_PKGFILE_NUMBER_HH

#include <stdint.h>

int32_t decimal_number(const char *text);    // strtol, base 10
uint32_t prefixed_number(const char *text);  // strtoul: "0x" hexadecimal, "0" octal, else decimal

#endif
