// The directories whose files the device trusts at start-up, in the order in which a package's share
// of them is checked.
#ifndef CMPNT_VERIFY_TRUSTED_DIRECTORY_HH
#define CMPNT_VERIFY_TRUSTED_DIRECTORY_HH

inline constexpr const char *trusted_directories[] = {
    "/sbin",          "/lib",           "/lib64",
    "/bin",           "/usr/bin",       "/usr/lib",
    "/usr/sbin",      "/usr/lib64",     "/usr/local/lib64",
    "/usr/local/bin", "/usr/local/lib", "/usr/local/sbin",
    "/etc/init.d",    "/etc/rc.d",
};

#endif
