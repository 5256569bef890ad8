// The row callback that removes the files of SMUs no longer needed.
#ifndef CMPNT_DB_CLEAR_HH
#define CMPNT_DB_CLEAR_HH

// The context is no address but the traversal's argument: the communication type in its low byte, the
// device type in the next.
int select_clear_callback(void *argument, int columns, char **values, char **names);

#endif
