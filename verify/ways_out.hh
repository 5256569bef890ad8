// Ways out of the scratch directory. Packages are unpacked there before anything of them is checked:
// where one left a link to a directory of the device, the next archive would write through it.
#ifndef CMPNT_VERIFY_WAYS_OUT_HH
#define CMPNT_VERIFY_WAYS_OUT_HH

// Removes the links under a directory that lead to directories outside of it; what they lead to
// stays. False when it could not be seen to. A plain file has none.
bool remove_ways_out(const char *directory);

#endif
