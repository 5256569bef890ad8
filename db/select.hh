// The select of a whole table.
#ifndef CMPNT_DB_SELECT_HH
#define CMPNT_DB_SELECT_HH

#include <stddef.h>
#include <stdint.h>

inline constexpr size_t select_size = 64;

// The statement; empty, which SQLite takes for success without rows, for a number without a table.
void format_select(char (&sql)[select_size], int32_t table);

#endif
