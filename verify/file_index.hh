// A list file in memory, for many questions while the file stays as it is.
#ifndef CMPNT_VERIFY_FILE_INDEX_HH
#define CMPNT_VERIFY_FILE_INDEX_HH

#include <sys/stat.h>

#include "verify/sorted_texts.hh"

// Whoever asks looks first whether the index holds what the file holds now, and reads the file itself
// where it does not.
class FileIndex {
public:
    // Adds what a line is asked for; false: this file has to be read for each question.
    using AddLine = bool (*)(FileIndex &index, char *line);

    FileIndex(const char *path, AddLine add_line) : path_(path), add_line_(add_line) {}
    FileIndex(const FileIndex &) = delete;
    FileIndex &operator=(const FileIndex &) = delete;

    bool is_current();

    SortedTexts texts;
    SortedTexts marked_texts;  // some of these, as the list has it

private:
    bool load();

    const char *path_;
    AddLine add_line_;
    struct stat tried_ = {};  // the file of the last load
    bool is_loaded_ = false;  // and whether that succeeded
};

bool add_whole_line(FileIndex &index, char *line);

#endif
