// Which library this is, for hosts to compare with the header that they were compiled against.
#include "libcmpnt_db.h"

const char *cmpnt_db_version(void) { return CMPNT_DB_VERSION; }
