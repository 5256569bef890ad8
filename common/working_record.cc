#include "common/working_record.hh"

WorkingRecord g_variable = {};
