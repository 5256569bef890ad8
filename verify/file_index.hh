// A list file in memory, for many questions while the file stays as it is.
#ifndef CMPNT_VERIFY_FILE_INDEX_HH
#define CMPNT_VERIFY_FILE_INDEX_HH

#include <sys/stat.h>

#include "verify/sorted_texts.hh"

// Whoever asks looks first whether the index holds what the file holds now, and reads the file itself
// where it does not. The first question about a new state of the file never finds an index: reading
// the file once answers that, and a file that changes between all questions is not sorted in vain.
class FileIndex {
public:
    // Adds what a line is asked for; false: this file has to be read for each question.
    using AddLine = bool (*)(FileIndex &index, char *line);

    FileIndex(const char *path, AddLine add_line) : path_(path), add_line_(add_line) {}
    FileIndex(const FileIndex &) = delete;
    FileIndex &operator=(const FileIndex &) = delete;
    ~FileIndex() { forget(); }

    bool is_current();
    void
    forget();  // what the file was: it may have changed in a way that cannot be seen from outside

    const char *keep(const char *text);  // a copy, with what the index holds; null without room

    SortedTexts texts;
    SortedTexts marked_texts;  // some of these, as the list has it

private:
    enum class State { unknown, seen, loaded, refused };

    bool load();
    bool add_lines();
    bool is_seen(const struct stat &status) const;

    const char *path_;
    AddLine add_line_;
    State state_ = State::unknown;
    struct stat seen_ = {};
    char *block_ = nullptr;  // as large as the file
    size_t used_ = 0;
};

#endif
