// The directory that a file is about to be created in.
#ifndef CMPNT_COMMON_PARENT_DIRECTORY_HH
#define CMPNT_COMMON_PARENT_DIRECTORY_HH

// Creates the directories of the path, up to its last "/"; a failure shows when the file is opened. A
// path without "/" has no directory part and is created whole.
void create_parent_directory(const char *path);

#endif
