// The line handler of product-type and history files.
#ifndef CMPNT_PKGFILE_CONFIG_LINE_HH
#define CMPNT_PKGFILE_CONFIG_LINE_HH

#include "libcmpnt_db.h"

// Modes of the parameter block.
inline constexpr int32_t config_find_cpu_product = 1;  // record: cmpnt_product_type
inline constexpr int32_t config_last_product = 2;
inline constexpr int32_t config_print_history = 3;  // record: cmpnt_history
inline constexpr int32_t config_log_history = 4;

int32_t cmpnt_parse_config_file(void *record, char *line, cmpnt_file_param *param);

#endif
