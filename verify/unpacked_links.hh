// The links that packages leave in the scratch directory. Packages are unpacked there before anything
// of them is checked: through a link that is there already, an archive would be written to files of
// the device, or to where the walk over the unpacked files does not come by.
#ifndef CMPNT_VERIFY_UNPACKED_LINKS_HH
#define CMPNT_VERIFY_UNPACKED_LINKS_HH

// Removes all symbolic links under a directory; what they lead to stays. False when it could not be
// seen to. A plain file has none.
bool remove_links(const char *directory);

#endif
