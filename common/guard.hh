// Scope guards for what a call acquires, so that every exit releases it. release() hands the thing
// over to the caller.
#ifndef CMPNT_COMMON_GUARD_HH
#define CMPNT_COMMON_GUARD_HH

#include <dirent.h>
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

// Base of the guards: owns one value and gives it to Traits::release on the way out, unless it is
// Traits::none. errno survives, so a failure can still be reported after the scope.
template <typename Traits>
class ScopeGuard {
public:
    using Value = typename Traits::Value;

    explicit ScopeGuard(Value value = Traits::none()) : value_(value) {}
    ScopeGuard(const ScopeGuard &) = delete;
    ScopeGuard &operator=(const ScopeGuard &) = delete;
    ~ScopeGuard() { reset(); }

    Value get() const { return value_; }
    explicit operator bool() const { return value_ != Traits::none(); }

    Value release() {
        Value value = value_;
        value_ = Traits::none();
        return value;
    }

    void reset(Value value = Traits::none()) {
        if (value_ != Traits::none()) {
            const int saved_errno = errno;
            Traits::release(value_);
            errno = saved_errno;
        }
        value_ = value;
    }

private:
    Value value_;
};

struct DescriptorTraits {
    using Value = int;
    static Value none() { return -1; }
    static void release(Value fd) { close(fd); }
};
using Descriptor = ScopeGuard<DescriptorTraits>;

struct StreamTraits {
    using Value = FILE *;
    static Value none() { return nullptr; }
    static void release(Value stream) { fclose(stream); }
};
using Stream = ScopeGuard<StreamTraits>;

struct DirectoryTraits {
    using Value = DIR *;
    static Value none() { return nullptr; }
    static void release(Value directory) { closedir(directory); }
};
using Directory = ScopeGuard<DirectoryTraits>;

struct MallocTraits {
    using Value = char *;
    static Value none() { return nullptr; }
    static void release(Value text) { free(text); }
};
using HeapText = ScopeGuard<MallocTraits>;

#endif
