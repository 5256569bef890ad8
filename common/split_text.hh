// The pieces of a text, for the time of a scope.
#ifndef CMPNT_COMMON_SPLIT_TEXT_HH
#define CMPNT_COMMON_SPLIT_TEXT_HH

#include "libcmpnt_db.h"

// Splits as cmpnt_detach_install_queue does, into fewer pieces than the limit. What was split off is
// owned, and can be looked at, whether or not the rest could be.
template <int32_t limit>
class SplitText {
public:
    SplitText(const char *text, const char *separators)
        : is_whole_(cmpnt_detach_install_queue(text, separators, pieces_, &count_, limit) == 0) {}
    SplitText(const SplitText &) = delete;
    SplitText &operator=(const SplitText &) = delete;
    ~SplitText() { cmpnt_recycle_pointer_array(pieces_, count_); }

    bool is_whole() const { return is_whole_; }
    int32_t count() const { return count_; }
    const char *operator[](int32_t index) const { return pieces_[index]; }
    char *&slot(int32_t index) { return pieces_[index]; }  // whoever takes the piece nulls it
    const char *const *begin() const { return pieces_; }
    const char *const *end() const { return pieces_ + count_; }

private:
    char *pieces_[limit];
    int32_t count_ = 0;
    bool is_whole_;
};

#endif
