// Patches, each beside the signed hash list of its directory.
#ifndef CMPNT_VERIFY_PATCH_PACKAGE_HH
#define CMPNT_VERIFY_PATCH_PACKAGE_HH

#include <stdint.h>

// What cmpnt_safe_verify does with a path that ends in ".deb", messages included.
int32_t verify_patch_package(const char *path);

#endif
