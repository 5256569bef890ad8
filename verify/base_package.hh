// Base packages.
#ifndef CMPNT_VERIFY_BASE_PACKAGE_HH
#define CMPNT_VERIFY_BASE_PACKAGE_HH

#include <stdint.h>

// What cmpnt_safe_verify does with a path that ends in ".ipk", messages included.
int32_t verify_base_package(const char *path);

#endif
